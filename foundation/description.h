// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace havrel {

/// The text of a value, as it stands in logs and messages.
///
/// | value                   | text                                                          |
/// |-------------------------|---------------------------------------------------------------|
/// | nil (invalid)           | "(null)"                                                      |
/// | null object             | "<null>"                                                      |
/// | boolean                 | "1" or "0"                                                    |
/// | numbers                 | decimal, shortest form that reads back as the same double     |
/// | string                  | itself                                                        |
/// | data                    | "{length = 3, bytes = 0x410042}", long ones cut in the middle |
/// | date                    | "2001-01-01 00:00:00 +0000"                                   |
/// | list                    | "(a, b)"                                                      |
/// | dictionary              | "{key = value; other = value}" in key order                   |
/// | anything else           | its registered conversion to text, else "<type name>"         |
///
/// A type registers its text with QMetaType::registerConverter<T, QString>().
///
/// Threads: any thread.
[[nodiscard]] QString descriptionOf(const QVariant& value);

/// The name of the class that \p value belongs to: "NSString", "NSNumber", "NSArray", "NSDictionary", "NSData",
/// "NSDate", "NSNull" for the values, else the name of the C++ class without its namespace; null for nil. An exception
/// is named by what was raised.
///
/// Threads: any thread.
[[nodiscard]] QString classNameOf(const QVariant& value);

/// Whether \p value is the null object (which collections hold in place of nil).
[[nodiscard]] bool isNullObject(const QVariant& value);

/// The null object.
[[nodiscard]] QVariant nullObject();

/// Whether \p value is a number object: a boolean, an integer or a floating-point number.
[[nodiscard]] bool isNumber(const QVariant& value);

} // namespace havrel
