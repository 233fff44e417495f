// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QStringView>

namespace havrel::cli {

/// \p text as a JSON string in UTF-8. Nothing is lost: lone surrogates, and with them the bytes of names that are not
/// UTF-8, are written as \udcXX, which Python's json and os.fsencode turn back into the bytes. What
/// would steer the terminal on which it may be shown is escaped likewise, so that files and terminals get the same.
///
/// \source RFC 8259
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonText(QStringView text);

/// ["a","b"]
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonTexts(const QStringList& texts);

inline constexpr QByteArrayView kJsonNull{"null"};

[[nodiscard]] inline QByteArray jsonBool(bool value)
{
    return value ? "true" : "false";
}

/// The shortest number that reads back as the same double, always with a point or an exponent; \p value is finite.
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonReal(double value);

/// An object on one line, member after member.
///
/// Threads: one thread at a time.
class JsonObject
{
public:
    /// \param value JSON itself
    JsonObject& add(QStringView key, QByteArrayView value);
    [[nodiscard]] QByteArray take();

private:
    QByteArray m_json = "{";
};

} // namespace havrel::cli
