// SPDX-License-Identifier: MIT
#include "foundation/dictionary_additions.h"

#include "foundation/array_additions.h"
#include "foundation/description.h"
#include "foundation/property_list_kind.h"
#include "foundation/reference_date.h"
#include "foundation/string_values.h"

#include <cmath>
#include <limits>

namespace havrel {
namespace {

using Kind = PropertyListKind;

constexpr double kTwoTo63 = 0x1p63;
constexpr double kTwoTo64 = 0x1p64;

qint64 integerOf(double number)
{
    if (std::isnan(number))
        return 0;
    if (number >= kTwoTo63)
        return std::numeric_limits<qint64>::max();
    return number < -kTwoTo63 ? std::numeric_limits<qint64>::min() : static_cast<qint64>(number);
}

quint64 unsignedIntegerOf(double number)
{
    if (number >= kTwoTo64)
        return std::numeric_limits<quint64>::max();
    return number >= kTwoTo63 ? static_cast<quint64>(number) : static_cast<quint64>(integerOf(number));
}

} // namespace

bool containsKey(const QVariantMap& map, const QString& key)
{
    return map.contains(key);
}

bool boolForKey(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    if (value.typeId() == QMetaType::QString)
        return boolValue(value.toString());
    return isNumber(value) && (value.typeId() == QMetaType::Bool ? value.toBool() : doubleForKey(map, key) != 0);
}

qint64 integerForKey(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    switch (propertyListKindOf(value)) {
    case Kind::Bool:
    case Kind::Signed:
        return value.toLongLong();
    case Kind::Unsigned:
        return static_cast<qint64>(value.toULongLong());
    case Kind::Real:
        return integerOf(value.toDouble());
    case Kind::String:
        return integerValue(value.toString());
    default:
        return 0;
    }
}

quint64 unsignedIntegerForKey(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    switch (propertyListKindOf(value)) {
    case Kind::Unsigned:
        return value.toULongLong();
    case Kind::Real:
        return unsignedIntegerOf(value.toDouble());
    case Kind::String:
        return 0;
    default:
        return static_cast<quint64>(integerForKey(map, key));
    }
}

float floatForKey(const QVariantMap& map, const QString& key)
{
    return static_cast<float>(doubleForKey(map, key));
}

double doubleForKey(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    if (value.typeId() == QMetaType::QString)
        return doubleValue(value.toString());
    return isNumber(value) ? value.toDouble() : 0;
}

std::optional<QDateTime> dateFromIntervalForKey(const QVariantMap& map, const QString& key)
{
    const double seconds = doubleForKey(map, key);
    const QDateTime date = dateFromReferenceInterval(seconds);
    return seconds != 0 && date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<QString> stringForKey(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

QVariant objectOrNilForKey(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    return isNullObject(value) ? QVariant() : value;
}

void setBool(QVariantMap& map, bool value, const QString& key)
{
    map.insert(key, value);
}

void setInteger(QVariantMap& map, qint64 value, const QString& key)
{
    map.insert(key, value);
}

void setUnsignedInteger(QVariantMap& map, quint64 value, const QString& key)
{
    map.insert(key, value);
}

void setDouble(QVariantMap& map, double value, const QString& key)
{
    map.insert(key, value);
}

void setDateAsInterval(QVariantMap& map, const QDateTime& date, const QString& key)
{
    map.insert(key, date.isValid() ? intervalSinceReferenceDate(date) : 0.0);
}

void setObjectOrNil(QVariantMap& map, const QVariant& value, const QString& key)
{
    map.insert(key, value.isValid() ? value : nullObject());
}

QString compactDescription(const QVariantMap& map)
{
    return compactDescriptionKey(map, {}, {});
}

QString compactDescriptionKey(const QVariantMap& map, const CompactText& key, const CompactText& value)
{
    const char* separator = "";
    QString text;
    for (auto it = map.begin(); it != map.end(); ++it) {
        text += QLatin1StringView(separator);
        text += key ? key(it.key()) : it.key();
        text += u':';
        text += value ? value(it.value()) : compactElementText(it.value());
        separator = ",";
    }
    return text;
}

} // namespace havrel
