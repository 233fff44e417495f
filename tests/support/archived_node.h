// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/coder.h"

#include <QVariant>

#include <memory>

namespace havrel {

/// An archivable object for tests: a value, and references to others.
struct ArchivedNode
{
    QVariant value;
    QVariant left;
    QVariant right;
};

using ArchivedNodePtr = std::shared_ptr<ArchivedNode>;

} // namespace havrel

Q_DECLARE_METATYPE(havrel::ArchivedNodePtr)

namespace havrel {

inline ArchivedNodePtr nodeIn(const QVariant& object)
{
    return object.value<ArchivedNodePtr>();
}

/// The class "Node". It asks for strings and numbers as its value and for nodes beside it.
inline ArchivableClass archivedNodeClass()
{
    ArchivableClass row;
    row.name = QStringLiteral("Node");
    row.superclasses = {QStringLiteral("NSObject")};
    row.isInstance = [](const QVariant& object) { return object.metaType() == QMetaType::fromType<ArchivedNodePtr>(); };
    row.identity = [](const QVariant& object) -> const void* { return nodeIn(object).get(); };
    row.encode = [](const QVariant& object, Encoder& encoder) {
        encoder.encodeObject(nodeIn(object)->value, QStringLiteral("value"));
        encoder.encodeObject(nodeIn(object)->left, QStringLiteral("left"));
        encoder.encodeObject(nodeIn(object)->right, QStringLiteral("$right"));
    };
    row.decode = [](Decoder& decoder) {
        const auto node = std::make_shared<ArchivedNode>();
        node->value =
            decoder.decodeObject({QStringLiteral("NSString"), QStringLiteral("NSNumber")}, QStringLiteral("value"));
        node->left = decoder.decodeObject({QStringLiteral("Node")}, QStringLiteral("left"));
        node->right = decoder.decodeObject({QStringLiteral("Node")}, QStringLiteral("$right"));
        return QVariant::fromValue(node);
    };
    return row;
}

} // namespace havrel
