// SPDX-License-Identifier: MIT
#include "foundation/binary_property_list.h"
#include "foundation/binary_scalar_writer.h"
#include "foundation/property_list_kind.h"

#include <QHash>

#include <vector>

namespace havrel {
namespace {

namespace format = binary_property_list;
using Kind = PropertyListKind;

/// One writing: first the table of objects, parents before children, then the bytes. The first fault is kept.
class Writer
{
public:
    PropertyListWriting write(const QVariant& value);

private:
    struct Object
    {
        QByteArray bytes; // a scalar whole, a container's marker and count
        std::vector<quint32> references;
    };

    quint32 add(const QVariant& value, int depth);
    quint32 addScalar(const QByteArray& encoded);
    quint32 addContainer(int type, qsizetype count, std::size_t references);
    quint32 addList(const QVariantList& list, int depth);
    quint32 addMap(const QVariantMap& map, int depth);
    void refer(quint32 container, quint32 object) { m_objects[container].references.push_back(object); }
    bool isRefused(Kind kind, const QVariant& value, int depth);
    void fail(const QString& fault);
    QByteArray assembled() const;

    std::vector<Object> m_objects;
    QHash<QByteArray, quint32> m_scalars; // by encoding
    int m_visited = 0;
    QString m_fault;
};

PropertyListWriting Writer::write(const QVariant& value)
{
    add(value, 0);
    PropertyListWriting writing;
    if (m_fault.isNull())
        writing.bytes = assembled();
    else
        writing.error = propertyListWriteError(m_fault);
    return writing;
}

quint32 Writer::add(const QVariant& value, int depth)
{
    const Kind kind = propertyListKindOf(value);
    if (isRefused(kind, value, depth))
        return 0;
    if (kind == Kind::List)
        return addList(value.toList(), depth + 1);
    if (kind == Kind::Map)
        return addMap(value.toMap(), depth + 1);
    return addScalar(encodedBinaryScalar(value, kind));
}

bool Writer::isRefused(Kind kind, const QVariant& value, int depth)
{
    if (kind == Kind::None)
        fail(notAPropertyListValue(value));
    else if (++m_visited > kMostPropertyListObjects)
        fail(property_list_fault::tooManyValues());
    else if (depth == kDeepestPropertyList && (kind == Kind::List || kind == Kind::Map))
        fail(property_list_fault::tooDeep());
    return !m_fault.isNull();
}

quint32 Writer::addScalar(const QByteArray& encoded)
{
    const auto next = static_cast<quint32>(m_objects.size());
    const auto known = m_scalars.constFind(encoded);
    if (known != m_scalars.cend())
        return *known;
    m_scalars.insert(encoded, next);
    m_objects.push_back({encoded, {}});
    return next;
}

quint32 Writer::addContainer(int type, qsizetype count, std::size_t references)
{
    const auto index = static_cast<quint32>(m_objects.size());
    Object& object = m_objects.emplace_back();
    appendCount(object.bytes, type, count);
    object.references.reserve(references);
    return index;
}

quint32 Writer::addList(const QVariantList& list, int depth)
{
    const quint32 index = addContainer(format::Array, list.size(), static_cast<std::size_t>(list.size()));
    for (const QVariant& element : list)
        refer(index, add(element, depth));
    return index;
}

quint32 Writer::addMap(const QVariantMap& map, int depth)
{
    const quint32 index = addContainer(format::Dictionary, map.size(), 2 * static_cast<std::size_t>(map.size()));
    for (auto it = map.begin(); it != map.end(); ++it)
        refer(index, add(it.key(), depth));
    for (const QVariant& value : map)
        refer(index, add(value, depth));
    return index;
}

void Writer::fail(const QString& fault)
{
    if (m_fault.isNull())
        m_fault = fault;
}

QByteArray Writer::assembled() const
{
    QByteArray bytes(format::kHead.data(), format::kHead.size());
    const int referenceSize = bytesFor(m_objects.size());
    std::vector<quint64> offsets;
    offsets.reserve(m_objects.size());
    for (const Object& object : m_objects) {
        offsets.push_back(static_cast<quint64>(bytes.size()));
        bytes.append(object.bytes);
        for (const quint32 reference : object.references)
            appendNumber(bytes, reference, referenceSize);
    }
    const auto table = static_cast<quint64>(bytes.size());
    const int offsetSize = bytesFor(table);
    for (const quint64 offset : offsets)
        appendNumber(bytes, offset, offsetSize);
    bytes.append(6, '\0');
    bytes.append(static_cast<char>(offsetSize)).append(static_cast<char>(referenceSize));
    for (const quint64 number : {quint64(m_objects.size()), quint64(0), table})
        appendNumber(bytes, number, 8);
    return bytes;
}

} // namespace

PropertyListWriting binaryPropertyList(const QVariant& value)
{
    return Writer().write(value);
}

} // namespace havrel
