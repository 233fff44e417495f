// SPDX-License-Identifier: MIT
#include "foundation/binary_property_list.h"
#include "foundation/binary_property_list_bytes.h"
#include "foundation/binary_scalar_reader.h"
#include "foundation/property_list_kind.h"

#include <optional>
#include <vector>

namespace havrel {
namespace {

namespace format = binary_property_list;

constexpr quint64 kMostElementsExpected = 256; // what a damaged list claims to hold is not believed further than this

/// One reading. Behind the first fault every object is nil and nothing more is read.
class Reader
{
public:
    explicit Reader(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    PropertyListReading read();

private:
    QVariant objectAt(quint64 index, int depth);
    QVariant existingObjectAt(quint64 index, int depth);
    QVariant containerAt(quint64 index, quint64 start, int depth);
    QVariant longScalarAt(quint64 index, quint64 start);
    QVariant list(quint64 start, int depth);
    QVariant map(quint64 start, int depth);
    QVariant referred(quint64 at, int depth);
    QVariant fail(const QString& fault);

    BinaryPropertyListBytes m_bytes;
    int m_visited = 0;
    std::vector<QVariant> m_longScalars; // by index, nil until read; none before there is one
    std::vector<bool> m_open;            // by index: the containers around the current object
};

PropertyListReading Reader::read()
{
    PropertyListReading reading;
    if (!m_bytes.failed()) {
        m_open.resize(m_bytes.count());
        reading.value = objectAt(m_bytes.top(), 0);
    }
    reading.error = m_bytes.error();
    if (reading.error)
        reading.value.clear();
    return reading;
}

QVariant Reader::objectAt(quint64 index, int depth)
{
    if (m_bytes.failed())
        return {};
    if (index >= m_bytes.count())
        return fail(QStringLiteral("a reference leads outside the table of objects"));
    if (++m_visited > kMostPropertyListObjects)
        return fail(property_list_fault::tooManyValues());
    return existingObjectAt(index, depth);
}

QVariant Reader::existingObjectAt(quint64 index, int depth)
{
    const std::optional<quint64> start = m_bytes.startOf(index);
    if (!start)
        return {};
    const quint8 marker = m_bytes.byteAt(*start);
    const int type = marker & 0xF0;
    if (type == format::Array || type == format::Dictionary)
        return containerAt(index, *start, depth + 1);
    const bool isLong = (marker & 0x0F) == format::kCountFollows;
    return isLong ? longScalarAt(index, *start) : binaryScalarAt(m_bytes, *start);
}

/// Decodes a scalar once, however often it is referred to. For short ones that would cost more than it saves.
QVariant Reader::longScalarAt(quint64 index, quint64 start)
{
    m_longScalars.resize(m_bytes.count());
    QVariant& scalar = m_longScalars[index];
    if (!scalar.isValid())
        scalar = binaryScalarAt(m_bytes, start);
    return scalar;
}

QVariant Reader::containerAt(quint64 index, quint64 start, int depth)
{
    if (depth > kDeepestPropertyList)
        return fail(property_list_fault::tooDeep());
    if (m_open[index])
        return fail(QStringLiteral("a container holds itself"));
    m_open[index] = true;
    const bool isList = (m_bytes.byteAt(start) & 0xF0) == format::Array;
    QVariant value = isList ? list(start, depth) : map(start, depth);
    m_open[index] = false;
    return value;
}

QVariant Reader::list(quint64 start, int depth)
{
    const quint64 width = m_bytes.referenceSize();
    const BinaryPropertyListBytes::Body body = m_bytes.bodyAt(start, width);
    QVariantList elements;
    elements.reserve(static_cast<qsizetype>(qMin(body.count, kMostElementsExpected)));
    for (quint64 i = 0; i < body.count && !m_bytes.failed(); ++i)
        elements.append(referred(body.start + i * width, depth));
    return elements;
}

QVariant Reader::map(quint64 start, int depth)
{
    const quint64 width = m_bytes.referenceSize();
    const BinaryPropertyListBytes::Body body = m_bytes.bodyAt(start, 2 * width);
    QVariantMap entries;
    for (quint64 i = 0; i < body.count && !m_bytes.failed(); ++i) {
        const quint64 at = body.start + i * width;
        const QVariant key = referred(at, depth);
        const QVariant value = referred(at + body.count * width, depth);
        if (!m_bytes.failed() && key.typeId() != QMetaType::QString)
            return fail(QStringLiteral("a dictionary's key is not a string"));
        entries.insert(entries.cend(), key.toString(), value); // most writers put keys in order
    }
    return entries;
}

QVariant Reader::referred(quint64 at, int depth)
{
    return objectAt(m_bytes.unsignedAt(at, m_bytes.referenceSize()), depth);
}

QVariant Reader::fail(const QString& fault)
{
    m_bytes.fail(fault);
    return {};
}

} // namespace

PropertyListReading readBinaryPropertyList(const QByteArray& bytes)
{
    return Reader(bytes).read();
}

} // namespace havrel
