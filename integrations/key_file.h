// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::integrations {

struct Text;

/// Writes groups of keys and values, as desktop entries and their relatives have them.
///
/// \source Desktop Entry Specification 1.5, "Basic format of the file"
///
/// Threads: one thread at a time.
class KeyFile
{
public:
    KeyFile();
    KeyFile& group(const QByteArray& name);
    /// \p value in any bytes: what the format gives a meaning is escaped.
    KeyFile& set(const QByteArray& key, const QByteArray& value);
    /// One line for each language.
    KeyFile& set(const QByteArray& key, const Text& text);
    [[nodiscard]] const QByteArray& text() const { return m_text; }

private:
    QByteArray m_text;
};

} // namespace havrel::integrations
