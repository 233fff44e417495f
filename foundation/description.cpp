// SPDX-License-Identifier: MIT
#include "foundation/description.h"

#include "diagnostics/exception_base.h"
#include "foundation/error.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>
#include <array>

namespace havrel {
namespace {

constexpr qsizetype kMostBytesShown = 24;

QString describedData(const QByteArray& data)
{
    QByteArray bytes = data.toHex();
    if (data.size() > kMostBytesShown)
        bytes = data.first(kMostBytesShown / 2).toHex() + " ... " + data.last(kMostBytesShown / 2).toHex();
    return QStringLiteral("{length = %1, bytes = 0x%2}").arg(data.size()).arg(QString::fromLatin1(bytes));
}

QString describedList(const QVariantList& list)
{
    QStringList parts;
    for (const QVariant& element : list)
        parts << descriptionOf(element);
    return u'(' + parts.join(QStringLiteral(", ")) + u')';
}

QString describedMap(const QVariantMap& map)
{
    QStringList parts;
    for (auto it = map.begin(); it != map.end(); ++it)
        parts << it.key() + QStringLiteral(" = ") + descriptionOf(it.value());
    return u'{' + parts.join(QStringLiteral("; ")) + u'}';
}

struct ValueClass
{
    int typeId;
    QLatin1StringView name;
};

const std::array<ValueClass, 9> kValueClasses{{
    {QMetaType::QString, QLatin1StringView("NSString")},
    {QMetaType::QByteArray, QLatin1StringView("NSData")},
    {QMetaType::QDateTime, QLatin1StringView("NSDate")},
    {QMetaType::QVariantList, QLatin1StringView("NSArray")},
    {QMetaType::QStringList, QLatin1StringView("NSArray")},
    {QMetaType::QVariantMap, QLatin1StringView("NSDictionary")},
    {QMetaType::QVariantHash, QLatin1StringView("NSDictionary")},
    {QMetaType::Nullptr, QLatin1StringView("NSNull")},
    {qMetaTypeId<Error>(), QLatin1StringView("NSError")},
}};

/// "JNPath" for "std::shared_ptr<havrel::JNPath>" and "havrel::JNPath*".
QString bareClassName(const char* typeName)
{
    QString name = QString::fromUtf8(typeName);
    if (const qsizetype inner = name.lastIndexOf(u'<'); inner >= 0)
        name = name.sliced(inner + 1).remove(u'>');
    return name.sliced(name.lastIndexOf(u':') + 1).remove(u'*').trimmed();
}

QString describedObject(const QVariant& value)
{
    if (value.canConvert<QString>())
        return value.toString();
    return QStringLiteral("<%1>").arg(QLatin1StringView(value.metaType().name()));
}

} // namespace

QString descriptionOf(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return QStringLiteral("(null)");
    case QMetaType::Nullptr:
        return QStringLiteral("<null>");
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    case QMetaType::QByteArray:
        return describedData(value.toByteArray());
    case QMetaType::QDateTime:
        return value.toDateTime().toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + QStringLiteral(" +0000");
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return describedList(value.toList());
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
        return describedMap(value.toMap());
    default:
        return describedObject(value);
    }
}

QString classNameOf(const QVariant& value)
{
    if (!value.isValid())
        return {};
    if (value.metaType() == QMetaType::fromType<Exception>())
        return value.value<Exception>().className();
    if (isNumber(value))
        return QStringLiteral("NSNumber");
    if (const auto* object =
            value.metaType().flags().testFlag(QMetaType::PointerToQObject) ? value.value<QObject*>() : nullptr)
        return bareClassName(object->metaObject()->className());
    const auto row = std::find_if(kValueClasses.begin(), kValueClasses.end(), [&value](const ValueClass& each) {
        return each.typeId == value.typeId();
    });
    return row != kValueClasses.end() ? QString(row->name) : bareClassName(value.metaType().name());
}

bool isNullObject(const QVariant& value)
{
    return value.typeId() == QMetaType::Nullptr;
}

QVariant nullObject()
{
    return QVariant::fromValue(nullptr);
}

bool isNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

} // namespace havrel
