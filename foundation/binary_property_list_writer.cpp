// SPDX-License-Identifier: MIT
#include "foundation/binary_object_table.h"
#include "foundation/binary_property_list.h"
#include "foundation/property_list_kind.h"

namespace havrel {
namespace {

namespace format = binary_property_list;
using Kind = PropertyListKind;
using Index = BinaryObjectTable::Index;

/// One writing: first the table of objects, parents before children, then the bytes. The first fault is kept.
class Writer
{
public:
    PropertyListWriting write(const QVariant& value);

private:
    Index add(const QVariant& value, int depth);
    Index addKey(const QString& key);
    Index addList(const QVariantList& list, int depth);
    Index addMap(const QVariantMap& map, int depth);
    bool isRefused(Kind kind, const QVariant& value, int depth);
    bool isOneTooMany();
    void fail(const QString& fault);

    BinaryObjectTable m_objects;
    int m_visited = 0;
    QString m_fault;
};

PropertyListWriting Writer::write(const QVariant& value)
{
    add(value, 0);
    PropertyListWriting writing;
    if (m_fault.isNull())
        writing.bytes = m_objects.assembled();
    else
        writing.error = propertyListWriteError(m_fault);
    return writing;
}

Index Writer::add(const QVariant& value, int depth)
{
    const Kind kind = propertyListKindOf(value);
    if (isRefused(kind, value, depth))
        return 0;
    if (kind == Kind::List)
        return addList(value.toList(), depth + 1);
    if (kind == Kind::Map)
        return addMap(value.toMap(), depth + 1);
    return m_objects.addScalar(value, kind);
}

Index Writer::addKey(const QString& key)
{
    return isOneTooMany() ? 0 : m_objects.addString(key);
}

bool Writer::isRefused(Kind kind, const QVariant& value, int depth)
{
    if (kind == Kind::None)
        fail(notAPropertyListValue(value));
    else if (!isOneTooMany() && depth == kDeepestPropertyList && (kind == Kind::List || kind == Kind::Map))
        fail(property_list_fault::tooDeep());
    return !m_fault.isNull();
}

bool Writer::isOneTooMany()
{
    if (++m_visited > kMostPropertyListObjects)
        fail(property_list_fault::tooManyValues());
    return !m_fault.isNull();
}

Index Writer::addList(const QVariantList& list, int depth)
{
    const Index index = m_objects.addContainer(format::Array, list.size(), list.size());
    qsizetype place = 0;
    for (const QVariant& element : list)
        m_objects.refer(index, place++, add(element, depth));
    return index;
}

Index Writer::addMap(const QVariantMap& map, int depth)
{
    const Index index = m_objects.addContainer(format::Dictionary, map.size(), 2 * map.size());
    qsizetype place = 0;
    for (auto it = map.begin(); it != map.end(); ++it)
        m_objects.refer(index, place++, addKey(it.key()));
    for (const QVariant& value : map)
        m_objects.refer(index, place++, add(value, depth));
    return index;
}

void Writer::fail(const QString& fault)
{
    if (m_fault.isNull())
        m_fault = fault;
}

} // namespace

PropertyListWriting binaryPropertyList(const QVariant& value)
{
    return Writer().write(value);
}

} // namespace havrel
