// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QVariantMap>

namespace havrel {

/// A dictionary that outlives its process: a small property list, replaced as a whole.
///
/// Threads: one thread at a time.
class KeptDictionary
{
public:
    /// \param path of the file; its folder is made with it
    explicit KeptDictionary(QByteArray path);

    /// What was kept; empty when nothing was, or what is there cannot be read, which is logged. Blocks on the disk.
    [[nodiscard]] QVariantMap read() const;
    /// Blocks on the disk. \return whether it is kept; why not is logged, and what was kept before stays
    bool keep(const QVariantMap& dictionary) const;

private:
    QByteArray m_path;
};

} // namespace havrel
