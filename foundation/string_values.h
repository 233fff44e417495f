// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

namespace havrel {

/// What a string is worth as a number. Blanks at the start are skipped, then as much is read as makes sense, and the
/// rest is ignored: "23abc" is 23, "abc" is 0. Digits are those of ASCII, the point is ".".
///
/// Threads: any thread.

/// Whether the text begins with Y, y, T, t or, behind a sign and zeros, a digit 1 to 9.
[[nodiscard]] bool boolValue(QStringView text);

/// Decimal digits behind a sign. Beyond 64 bits the largest, or smallest, number.
[[nodiscard]] qint64 integerValue(QStringView text);

/// Digits, fraction and exponent behind a sign; no names such as "inf". Too large a number is infinite.
[[nodiscard]] double doubleValue(QStringView text);
[[nodiscard]] float floatValue(QStringView text);

} // namespace havrel
