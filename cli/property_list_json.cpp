// SPDX-License-Identifier: MIT
#include "cli/property_list_json.h"

#include "cli/json_output.h"
#include "foundation/description.h"
#include "foundation/property_list.h"

#include <QDateTime>

#include <array>
#include <cmath>
#include <limits>

namespace havrel::cli {
namespace {

constexpr auto kDateFormat = "yyyy-MM-ddTHH:mm:ss.zzzZ";

struct NamedReal
{
    QLatin1StringView name;
    double value;
};
constexpr auto kNamedReals = std::to_array<NamedReal>({
    {QLatin1StringView("inf"), std::numeric_limits<double>::infinity()},
    {QLatin1StringView("-inf"), -std::numeric_limits<double>::infinity()},
    {QLatin1StringView("nan"), std::numeric_limits<double>::quiet_NaN()},
});

QByteArray object(QLatin1StringView key, QByteArrayView value)
{
    return JsonObject().add(QString(key), value).take();
}

QByteArray jsonOfReal(double value)
{
    if (std::isfinite(value))
        return jsonReal(value);
    const auto& named = kNamedReals[std::isnan(value) ? 2 : value > 0 ? 0 : 1];
    return object(QLatin1StringView("$real"), jsonText(QString(named.name)));
}

QByteArray jsonOfArray(const QVariantList& array)
{
    QByteArray json = "[";
    for (const QVariant& each : array)
        json += (json.size() > 1 ? "," : "") + jsonOfPropertyList(each);
    return json + ']';
}

bool looksLikeAValue(const QVariantMap& dictionary)
{
    return dictionary.size() == 1 && dictionary.firstKey().startsWith(u'$');
}

QByteArray jsonOfDictionary(const QVariantMap& dictionary)
{
    JsonObject json;
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it)
        json.add(it.key(), jsonOfPropertyList(it.value()));
    return looksLikeAValue(dictionary) ? object(QLatin1StringView("$dictionary"), json.take()) : json.take();
}

QByteArray jsonOfUserType(const QVariant& value)
{
    if (value.canConvert<PropertyListUID>())
        return object(QLatin1StringView("$uid"), QByteArray::number(value.value<PropertyListUID>().number));
    return kJsonNull.toByteArray();
}

} // namespace

QByteArray jsonOfPropertyList(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return jsonBool(value.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong:
        return QByteArray::number(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return QByteArray::number(value.toULongLong());
    case QMetaType::Double:
        return jsonOfReal(value.toDouble());
    case QMetaType::QString:
        return jsonText(value.toString());
    case QMetaType::QByteArray:
        return object(QLatin1StringView("$data"), '"' + value.toByteArray().toBase64() + '"');
    case QMetaType::QDateTime:
        return object(QLatin1StringView("$date"),
                      jsonText(value.toDateTime().toUTC().toString(QString::fromLatin1(kDateFormat))));
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return jsonOfArray(value.toList());
    case QMetaType::QVariantMap:
        return jsonOfDictionary(value.toMap());
    default:
        return jsonOfUserType(value);
    }
}

namespace {

PropertyListFromJson fault(const char* text)
{
    return {{}, QString::fromLatin1(text)};
}

PropertyListFromJson readData(const QVariant& json)
{
    const auto decoded =
        QByteArray::fromBase64Encoding(json.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (json.typeId() != QMetaType::QString || !decoded)
        return fault("\"$data\" wants a string of base64");
    return {*decoded, {}};
}

PropertyListFromJson readDate(const QVariant& json)
{
    QDateTime date = QDateTime::fromString(json.toString(), QString::fromLatin1(kDateFormat));
    date.setTimeSpec(Qt::UTC);
    if (json.typeId() != QMetaType::QString || !date.isValid())
        return fault(R"("$date" wants a string like "2001-01-01T00:00:00.000Z")");
    return {date, {}};
}

PropertyListFromJson readReal(const QVariant& json)
{
    for (const NamedReal& each : kNamedReals)
        if (json.typeId() == QMetaType::QString && json.toString() == each.name)
            return {each.value, {}};
    return fault(R"("$real" wants "nan", "inf" or "-inf")");
}

PropertyListFromJson readUID(const QVariant& json)
{
    const int type = json.typeId();
    if ((type != QMetaType::LongLong && type != QMetaType::ULongLong) ||
        (type == QMetaType::LongLong && json.toLongLong() < 0))
        return fault("\"$uid\" wants a number that is not negative");
    return {QVariant::fromValue(PropertyListUID{json.toULongLong()}), {}};
}

PropertyListFromJson readMembers(const QVariant& json)
{
    if (json.typeId() != QMetaType::QVariantMap)
        return fault("\"$dictionary\" wants an object");
    QVariantMap dictionary = json.toMap();
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
        PropertyListFromJson member = propertyListOfJson(it.value());
        if (!member.fault.isNull())
            return member;
        it.value() = std::move(member.value);
    }
    return {dictionary, {}};
}

PropertyListFromJson readArray(const QVariantList& json)
{
    QVariantList array;
    for (const QVariant& each : json) {
        PropertyListFromJson element = propertyListOfJson(each);
        if (!element.fault.isNull())
            return element;
        array.append(std::move(element.value));
    }
    return {array, {}};
}

struct ValueForm
{
    QLatin1StringView key;
    PropertyListFromJson (*read)(const QVariant& json);
};
constexpr auto kValueForms = std::to_array<ValueForm>({
    {QLatin1StringView("$data"), readData},
    {QLatin1StringView("$date"), readDate},
    {QLatin1StringView("$dictionary"), readMembers},
    {QLatin1StringView("$real"), readReal},
    {QLatin1StringView("$uid"), readUID},
});

PropertyListFromJson readValueForm(const QVariantMap& json)
{
    for (const ValueForm& each : kValueForms)
        if (json.firstKey() == each.key)
            return each.read(json.first());
    return fault("an object with one unknown key that begins with \"$\"");
}

} // namespace

PropertyListFromJson propertyListOfJson(const QVariant& json)
{
    if (json.typeId() == QMetaType::QVariantList)
        return readArray(json.toList());
    if (json.typeId() != QMetaType::QVariantMap)
        return {json, {}};
    const QVariantMap map = json.toMap();
    return looksLikeAValue(map) ? readValueForm(map) : readMembers(map);
}

} // namespace havrel::cli
