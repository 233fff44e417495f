// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"

#include <QByteArray>
#include <QMetaType>
#include <QVariant>

#include <optional>

namespace havrel {

/// Property lists: trees of values as bytes that other programs read and write too.
///
/// | value                                | read back as                                                       |
/// |--------------------------------------|--------------------------------------------------------------------|
/// | bool                                 | bool                                                               |
/// | integers                             | qlonglong; qulonglong from 2^63 on                                 |
/// | float, double                        | double                                                             |
/// | QString                              | QString; binary keeps every code unit, lone surrogates included    |
/// | QByteArray                           | QByteArray                                                         |
/// | QDateTime                            | QDateTime in UTC; to the millisecond in binary, to the second in XML |
/// | QVariantList, QStringList            | QVariantList                                                       |
/// | QVariantMap, QVariantHash            | QVariantMap                                                        |
/// | PropertyListUID                      | PropertyListUID; in XML the dictionary {"CF$UID": number}          |
/// | null object                          | null object; binary only                                           |
///
/// Anything else, nil included, cannot be written. Both directions are bounded: containers nest at most
/// kDeepestPropertyList levels, and a tree holds at most kMostPropertyListObjects values, one that is referred to twice
/// counting twice.
///
/// Threads: any thread.

inline constexpr int kDeepestPropertyList = 64;
inline constexpr int kMostPropertyListObjects = 1'000'000;

/// Codes of the errors in the domain error_domain::kCocoa.
/// \source the platform's documented property-list error codes.
namespace property_list_error {
inline constexpr qint64 kReadCorrupt = 3840;
inline constexpr qint64 kReadUnknownVersion = 3841;
inline constexpr qint64 kWriteInvalid = 3852;
} // namespace property_list_error

/// A reference by number to another object, as keyed archives use them.
struct PropertyListUID
{
    quint64 number = 0;
    friend bool operator==(const PropertyListUID&, const PropertyListUID&) = default;
};

enum class PropertyListFormat { Binary, XML };

/// What reading gave: a value, or an error and nil.
struct PropertyListReading
{
    QVariant value;
    PropertyListFormat format = PropertyListFormat::Binary;
    std::optional<Error> error;
};

/// What writing gave: bytes, or an error and no bytes.
struct PropertyListWriting
{
    QByteArray bytes;
    std::optional<Error> error;
};

/// Reads a property list of either format, told by its first bytes. Never throws, whatever the bytes; an error's
/// localized description is a sentence that says what is wrong.
[[nodiscard]] PropertyListReading parsePropertyList(const QByteArray& bytes);

/// Writes format "bplist00". Dictionaries go in key order and equal scalars are stored once, so that equal values give
/// equal bytes, the same that Python's plistlib makes of them.
[[nodiscard]] PropertyListWriting binaryPropertyList(const QVariant& value);

/// Writes XML, indented with tabs, dictionaries in key order. Refuses what XML cannot hold: control characters and lone
/// surrogates in strings, dates outside the years 1 to 9999, the null object.
[[nodiscard]] PropertyListWriting xmlPropertyList(const QVariant& value);

} // namespace havrel

Q_DECLARE_METATYPE(havrel::PropertyListUID)
