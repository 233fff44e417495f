// SPDX-License-Identifier: MIT
#include "foundation/collection_enumeration.h"

#include <QAssociativeIterable>
#include <QSequentialIterable>

namespace havrel {
namespace {

enum class Keys { Skipped, Visited };

void enumerate(const QVariant& collection, Keys keys, const Visit& block);

void visit(const QVariant& element, Keys keys, const Visit& block)
{
    block(element);
    enumerate(element, keys, block);
}

void enumerateEntries(const QAssociativeIterable& entries, Keys keys, const Visit& block)
{
    for (auto it = entries.begin(); it != entries.end(); ++it) {
        if (keys == Keys::Visited)
            visit(it.key(), keys, block);
        visit(it.value(), keys, block);
    }
}

bool isSequence(const QVariant& value)
{
    const bool isText = value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QByteArray;
    return !isText && value.canConvert<QSequentialIterable>();
}

void enumerate(const QVariant& collection, Keys keys, const Visit& block)
{
    if (collection.canConvert<QAssociativeIterable>())
        return enumerateEntries(collection.value<QAssociativeIterable>(), keys, block);
    if (!isSequence(collection))
        return;
    const auto elements = collection.value<QSequentialIterable>();
    for (const QVariant& element : elements)
        visit(element, keys, block);
}

} // namespace

void enumerateRecursiveCollectionValuesUsingBlock(const QVariant& collection, const Visit& block)
{
    enumerate(collection, Keys::Skipped, block);
}

void enumerateRecursiveCollectionObjectUsingBlock(const QVariant& collection, const Visit& block)
{
    enumerate(collection, Keys::Visited, block);
}

} // namespace havrel
