// SPDX-License-Identifier: MIT
#include "foundation/encodable_details.h"

#include "diagnostics/exception.h"
#include "foundation/coder.h"
#include "foundation/description.h"
#include "foundation/property_list_kind.h"

namespace havrel {
namespace {

/// An exception without its details: they may be what is endless about it.
QString standIn(const QVariant& value)
{
    if (value.metaType() != QMetaType::fromType<Exception>())
        return descriptionOf(value);
    const auto exception = value.value<Exception>();
    return QStringLiteral("<%1> %2").arg(exception.name(), exception.reason());
}

QVariantMap encodableEntries(const QVariantMap& entries, const Encoder& encoder, int level);

QVariantList encodableElements(const QVariantList& elements, const Encoder& encoder, int level);

QVariant encodable(const QVariant& value, const Encoder& encoder, int level)
{
    const PropertyListKind kind = propertyListKindOf(value);
    const bool isContainer = kind == PropertyListKind::List || kind == PropertyListKind::Map;
    if (!encoder.canEncodeObject(value) || (isContainer && level == kDeepestPropertyList))
        return standIn(value);
    if (kind == PropertyListKind::List)
        return encodableElements(value.toList(), encoder, level + 1);
    return kind == PropertyListKind::Map ? encodableEntries(value.toMap(), encoder, level + 1) : value;
}

QVariantList encodableElements(const QVariantList& elements, const Encoder& encoder, int level)
{
    QVariantList list;
    for (const QVariant& element : elements)
        list.append(encodable(element, encoder, level));
    return list;
}

QVariantMap encodableEntries(const QVariantMap& entries, const Encoder& encoder, int level)
{
    QVariantMap map;
    for (auto it = entries.begin(); it != entries.end(); ++it)
        map.insert(it.key(), encodable(it.value(), encoder, level));
    return map;
}

} // namespace

QVariantMap encodableDetails(const QVariantMap& details, const Encoder& encoder)
{
    return encodableEntries(details, encoder, 1);
}

} // namespace havrel
