// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

namespace havrel::cli {

/// A property-list value as JSON that loses nothing. What JSON has no form for is an object with one key:
///
/// | value                                        | JSON                                                        |
/// |----------------------------------------------|-------------------------------------------------------------|
/// | boolean, string, array                       | the same                                                    |
/// | integer                                      | number without point and exponent, exact over all 64 bits   |
/// | real                                         | number with point or exponent; {"$real":"nan"}, "inf", "-inf" |
/// | data                                         | {"$data":"base64"}                                          |
/// | date                                         | {"$date":"2001-01-01T00:00:00.000Z"}                        |
/// | reference                                    | {"$uid":number}                                             |
/// | null object                                  | null                                                        |
/// | dictionary                                   | object                                                      |
/// | dictionary whose one key begins with "$"     | {"$dictionary":object}                                      |
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonOfPropertyList(const QVariant& value);

struct PropertyListFromJson
{
    QVariant value;
    QString fault; ///< null when there is a value
};

/// The inverse, for what readJson() gave.
///
/// Threads: any thread.
[[nodiscard]] PropertyListFromJson propertyListOfJson(const QVariant& json);

} // namespace havrel::cli
