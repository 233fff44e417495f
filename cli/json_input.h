// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace havrel::cli {

/// What reading a JSON text gave. Objects are QVariantMap, arrays QVariantList, strings QString, null the null object;
/// numbers without point and exponent are qlonglong, from 2^63 to 2^64-1 qulonglong, all others double.
struct JsonReading
{
    QVariant value;
    QString fault;        ///< null when the text is JSON
    qsizetype offset = 0; ///< of the fault, in bytes
};

/// Reads one JSON text, and nothing but white space around it. Strict: valid UTF-8, no number that would lose digits to
/// the range of 64 bits, no key twice in an object, at most 128 levels. \u escapes may make lone surrogates, which are
/// kept.
///
/// \source RFC 8259
///
/// Threads: any thread.
[[nodiscard]] JsonReading readJson(const QByteArray& text);

} // namespace havrel::cli
