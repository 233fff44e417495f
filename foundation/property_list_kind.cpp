// SPDX-License-Identifier: MIT
#include "foundation/property_list_kind.h"

#include "foundation/reference_date.h"

#include <array>

namespace havrel {
namespace {

using Kind = PropertyListKind;

struct KindOfType
{
    QMetaType::Type type;
    Kind kind;
};

constexpr auto kKindsOfTypes = std::to_array<KindOfType>({
    {QMetaType::Nullptr, Kind::Null},       {QMetaType::Bool, Kind::Bool},        {QMetaType::Char, Kind::Signed},
    {QMetaType::SChar, Kind::Signed},       {QMetaType::Short, Kind::Signed},     {QMetaType::Int, Kind::Signed},
    {QMetaType::Long, Kind::Signed},        {QMetaType::LongLong, Kind::Signed},  {QMetaType::UChar, Kind::Unsigned},
    {QMetaType::UShort, Kind::Unsigned},    {QMetaType::UInt, Kind::Unsigned},    {QMetaType::ULong, Kind::Unsigned},
    {QMetaType::ULongLong, Kind::Unsigned}, {QMetaType::Float, Kind::Real},       {QMetaType::Double, Kind::Real},
    {QMetaType::QDateTime, Kind::Date},     {QMetaType::QByteArray, Kind::Data},  {QMetaType::QString, Kind::String},
    {QMetaType::QVariantList, Kind::List},  {QMetaType::QStringList, Kind::List}, {QMetaType::QVariantMap, Kind::Map},
    {QMetaType::QVariantHash, Kind::Map},
});

/// By the number of a type that the toolkit itself knows.
constexpr auto kKinds = [] {
    std::array<Kind, QMetaType::LastCoreType + 1> kinds{};
    for (const KindOfType& each : kKindsOfTypes)
        kinds[each.type] = each.kind;
    return kinds;
}();
static_assert(kKinds[QMetaType::UnknownType] == Kind::None);

Kind kindOfType(int type)
{
    if (static_cast<std::size_t>(type) < kKinds.size())
        return kKinds[static_cast<std::size_t>(type)];
    return type == qMetaTypeId<PropertyListUID>() ? Kind::UID : Kind::None;
}

bool isWritable(const QDateTime& date)
{
    return date.isValid() && dateFromReferenceInterval(intervalSinceReferenceDate(date)).isValid();
}

} // namespace

PropertyListKind propertyListKindOf(const QVariant& value)
{
    const Kind kind = kindOfType(value.typeId());
    return kind == Kind::Date && !isWritable(value.toDateTime()) ? Kind::None : kind;
}

QString notAPropertyListValue(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("it holds nil");
    if (value.typeId() == QMetaType::QDateTime)
        return QStringLiteral("it holds a date that is invalid or out of range");
    return QStringLiteral("it holds a value of the type %1").arg(QLatin1StringView(value.metaType().name()));
}

namespace property_list_fault {

QString tooDeep()
{
    return QStringLiteral("its containers nest deeper than %1 levels").arg(kDeepestPropertyList);
}

QString tooManyValues()
{
    return QStringLiteral("it holds more than %1 values").arg(kMostPropertyListObjects);
}

} // namespace property_list_fault
} // namespace havrel
