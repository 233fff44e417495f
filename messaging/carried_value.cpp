// SPDX-License-Identifier: MIT
#include "messaging/carried_value.h"

#include "platform/bus_body.h"
#include "platform/bus_text.h"

#include <QVariantMap>

#include <utility>

namespace havrel {
namespace {

using platform::firstCompleteType;

/// \source the message bus specification, "Maximum nesting depth"
constexpr int kDeepest = 64;

using Carried = std::optional<QVariant>;

Carried carried(QByteArrayView type, const QVariant& value, int depth);

bool isPath(QStringView text)
{
    if (!text.startsWith(u'/') || (text.size() > 1 && text.endsWith(u'/')) || text.contains(u"//"))
        return false;
    const auto isAllowed = [](QChar each) {
        return each == u'/' || each == u'_' || (each >= u'a' && each <= u'z') || (each >= u'A' && each <= u'Z') ||
               (each >= u'0' && each <= u'9');
    };
    return std::all_of(text.begin(), text.end(), isAllowed);
}

Carried carriedText(char type, const QVariant& value)
{
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    const QByteArray bytes = platform::busText(value.toString()).toUtf8();
    const bool fits = !bytes.contains('\0') && (type != 'o' || isPath(value.toString()));
    return fits ? Carried(QString::fromUtf8(bytes)) : std::nullopt;
}

template<typename Integer>
Carried carriedInteger(const QVariant& value)
{
    const int kind = value.typeId();
    const bool isUnsigned = kind == QMetaType::ULongLong || kind == QMetaType::UInt || kind == QMetaType::UChar;
    const bool isSigned = kind == QMetaType::LongLong || kind == QMetaType::Int;
    const bool fits = isUnsigned ? std::in_range<Integer>(value.toULongLong())
                                 : isSigned && std::in_range<Integer>(value.toLongLong());
    if (!fits)
        return std::nullopt;
    return std::is_signed_v<Integer> ? Carried(value.toLongLong()) : Carried(value.toULongLong());
}

Carried carriedBasic(char type, const QVariant& value)
{
    switch (type) {
    case 's':
    case 'o':
    case 'g':
        return carriedText(type, value);
    case 'b':
        return value.typeId() == QMetaType::Bool ? Carried(value) : std::nullopt;
    case 'd':
        return value.typeId() == QMetaType::Double ? Carried(value) : std::nullopt;
    case 'y':
        return carriedInteger<quint8>(value);
    case 'n':
        return carriedInteger<qint16>(value);
    case 'q':
        return carriedInteger<quint16>(value);
    case 'i':
        return carriedInteger<qint32>(value);
    case 'u':
        return carriedInteger<quint32>(value);
    case 'x':
        return carriedInteger<qint64>(value);
    case 't':
        return carriedInteger<quint64>(value);
    default:
        return std::nullopt;
    }
}

Carried carriedDictionary(QByteArrayView entry, const QVariant& value, int depth)
{
    if (value.typeId() != QMetaType::QVariantMap || !QByteArrayView("sog").contains(entry[0]))
        return std::nullopt;
    QVariantMap result;
    const QVariantMap map = value.toMap();
    for (auto each = map.constKeyValueBegin(); each != map.constKeyValueEnd(); ++each) {
        const Carried key = carriedText(entry[0], each->first);
        const Carried content = carried(entry.sliced(1), each->second, depth + 1);
        if (!key || !content)
            return std::nullopt;
        result.insert(key->toString(), *content);
    }
    return result;
}

Carried carriedArray(QByteArrayView element, const QVariant& value, int depth)
{
    if (element == "y")
        return value.typeId() == QMetaType::QByteArray ? Carried(value) : std::nullopt;
    if (element.startsWith('{'))
        return carriedDictionary(element.sliced(1).chopped(1), value, depth);
    if (!value.canConvert<QVariantList>())
        return std::nullopt;
    QVariantList result;
    for (const QVariant& each : value.toList()) {
        const Carried content = carried(element, each, depth);
        if (!content)
            return std::nullopt;
        result.append(*content);
    }
    const bool isText = element == "s" || element == "o" || element == "g";
    return isText ? Carried(QVariant(result).toStringList()) : Carried(result);
}

Carried carriedStructure(QByteArrayView members, const QVariant& value, int depth)
{
    if (value.typeId() != QMetaType::QVariantList)
        return std::nullopt;
    QVariantList result;
    for (const QVariant& each : value.toList()) {
        const QByteArrayView type = firstCompleteType(members);
        const Carried content = carried(type, each, depth);
        if (!content)
            return std::nullopt;
        result.append(*content);
        members = members.sliced(type.size());
    }
    return members.isEmpty() ? Carried(result) : std::nullopt;
}

Carried carriedVariant(const QVariant& value, int depth)
{
    const QByteArray type = platform::naturalBusType(value);
    const bool says = value.metaType() == QMetaType::fromType<platform::BusVariant>();
    if (type.isEmpty() || firstCompleteType(type).size() != type.size())
        return std::nullopt;
    return carried(type, says ? value.value<platform::BusVariant>().value : value, depth);
}

Carried carried(QByteArrayView type, const QVariant& value, int depth)
{
    if (type.isEmpty() || depth > kDeepest)
        return std::nullopt;
    switch (type[0]) {
    case 'a':
        return carriedArray(type.sliced(1), value, depth + 1);
    case '(':
        return carriedStructure(type.sliced(1).chopped(1), value, depth + 1);
    case 'v':
        return carriedVariant(value, depth + 1);
    default:
        return carriedBasic(type[0], value);
    }
}

} // namespace

std::optional<QVariant> carriedValue(QByteArrayView type, const QVariant& value)
{
    if (firstCompleteType(type).size() != type.size())
        return std::nullopt;
    return carried(type, value, 0);
}

std::optional<QVariantList> carriedValues(const QByteArrayList& types, const QVariantList& values)
{
    if (types.size() != values.size())
        return std::nullopt;
    QVariantList result;
    for (qsizetype i = 0; i < types.size(); ++i) {
        const std::optional<QVariant> value = carriedValue(types[i], values[i]);
        if (!value)
            return std::nullopt;
        result.append(*value);
    }
    return result;
}

} // namespace havrel
