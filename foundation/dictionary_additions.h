// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace havrel {

/// Additions to dictionaries: values by type, nil kept as the null object, one-line texts.
///
/// A typed getter asks the value for its boolean, integer ... value. Numbers answer all of them; strings answer all but
/// the unsigned one ("YES" is true, "23abc" is 23, see string_values.h); nothing else answers any. What does not
/// answer, like a missing key, gives false or 0.
///
/// Threads: any thread.

/// Whether a value, be it the null object, is stored. \selector containsKey:
[[nodiscard]] bool containsKey(const QVariantMap& map, const QString& key);

/// \selector boolForKey:
[[nodiscard]] bool boolForKey(const QVariantMap& map, const QString& key);

/// Fractions are cut towards 0, reals beyond 64 bits give the nearest end, large unsigned numbers wrap.
/// \selector integerForKey:
[[nodiscard]] qint64 integerForKey(const QVariantMap& map, const QString& key);

/// As integerForKey(), but negative numbers wrap. Strings give 0. \selector unsignedIntegerForKey:
[[nodiscard]] quint64 unsignedIntegerForKey(const QVariantMap& map, const QString& key);

/// \selector floatForKey:
[[nodiscard]] float floatForKey(const QVariantMap& map, const QString& key);

/// \selector doubleForKey:
[[nodiscard]] double doubleForKey(const QVariantMap& map, const QString& key);

/// The moment that many seconds (doubleForKey) after 2001-01-01 00:00:00 UTC, in UTC; nil for 0 and for what is not a
/// moment (see reference_date.h). \selector dateFromIntervalForKey:
[[nodiscard]] std::optional<QDateTime> dateFromIntervalForKey(const QVariantMap& map, const QString& key);

/// The value if it is a string, else nil. \selector stringForKey:
[[nodiscard]] std::optional<QString> stringForKey(const QVariantMap& map, const QString& key);

/// The value; nil for the null object and for a missing key. \selector objectOrNilForKey:
[[nodiscard]] QVariant objectOrNilForKey(const QVariantMap& map, const QString& key);

void setBool(QVariantMap& map, bool value, const QString& key);               ///< \selector setBool:forKey:
void setInteger(QVariantMap& map, qint64 value, const QString& key);          ///< \selector setInteger:forKey:
void setUnsignedInteger(QVariantMap& map, quint64 value, const QString& key); ///< \selector setUnsignedInteger:forKey:
void setDouble(QVariantMap& map, double value, const QString& key);           ///< \selector setDouble:forKey:

/// Stores the date's seconds since 2001-01-01 00:00:00 UTC as a double; an invalid date is 0.
/// \selector setDateAsInterval:forKey:
void setDateAsInterval(QVariantMap& map, const QDateTime& date, const QString& key);

/// Stores the null object in place of nil. \selector setObjectOrNil:forKey:
void setObjectOrNil(QVariantMap& map, const QVariant& value, const QString& key);

/// The dictionary as it is now, whatever becomes of \p map: values share their storage until one of them changes, so
/// this costs nothing. \selector immutableCopy
[[nodiscard]] inline QVariantMap immutableCopy(const QVariantMap& map)
{
    return map;
}

using CompactText = std::function<QString(const QVariant&)>;

/// "key:value" joined by "," in key order, without braces; strings in double quotes. \selector compactDescription
[[nodiscard]] QString compactDescription(const QVariantMap& map);

/// The same with texts made by the caller; an empty function stands for the usual text.
/// \selector compactDescriptionKey:value:
[[nodiscard]] QString compactDescriptionKey(const QVariantMap& map, const CompactText& key, const CompactText& value);

} // namespace havrel
