// SPDX-License-Identifier: MIT
#include "foundation/binary_object_table.h"

#include "foundation/binary_property_list.h"

#include <QHashFunctions>

#include <algorithm>
#include <limits>
#include <utility>

namespace havrel {
namespace {

namespace format = binary_property_list;

constexpr BinaryObjectTable::Index kFree = std::numeric_limits<BinaryObjectTable::Index>::max();
constexpr qsizetype kSlotsAtFirst = 64; // a power of two

} // namespace

BinaryObjectTable::BinaryObjectTable()
    : m_slots(kSlotsAtFirst, kFree)
{
}

BinaryObjectTable::Index BinaryObjectTable::addScalar(const QVariant& value, PropertyListKind kind)
{
    const Index index = beginObject();
    appendBinaryScalar(m_bytes, value, kind);
    return known(index);
}

BinaryObjectTable::Index BinaryObjectTable::addString(const QString& text)
{
    const Index index = beginObject();
    appendBinaryString(m_bytes, text);
    return known(index);
}

BinaryObjectTable::Index BinaryObjectTable::addContainer(int type, qsizetype count, qsizetype references)
{
    const Index index = beginObject();
    appendCount(m_bytes, type, count);
    m_references.resize(m_references.size() + references);
    return index;
}

void BinaryObjectTable::refer(Index container, qsizetype place, Index object)
{
    m_references[m_objects[container].references + place] = object;
}

BinaryObjectTable::Index BinaryObjectTable::beginObject()
{
    m_objects.append({m_bytes.size(), m_references.size()});
    return static_cast<Index>(m_objects.size() - 1);
}

/// The index of the scalar that was added last; when there was an equal one, that one's, and the last is taken back.
BinaryObjectTable::Index BinaryObjectTable::known(Index last)
{
    if (2 * m_scalars >= m_slots.size())
        growSlots();
    Index& slot = *slotOf(bytesOf(last));
    if (slot == kFree) {
        ++m_scalars;
        slot = last;
    } else {
        m_bytes.resize(m_objects.last().bytes);
        m_objects.removeLast();
    }
    return slot;
}

/// The slot of the scalar with those bytes, or the free one where it belongs.
BinaryObjectTable::Index* BinaryObjectTable::slotOf(QByteArrayView bytes)
{
    const std::size_t mask = static_cast<std::size_t>(m_slots.size()) - 1;
    std::size_t place = qHash(bytes, QHashSeed::globalSeed()) & mask;
    const auto isTaken = [&](Index index) { return index != kFree && bytesOf(index) != bytes; };
    while (isTaken(m_slots[static_cast<qsizetype>(place)]))
        place = (place + 1) & mask;
    return &m_slots[static_cast<qsizetype>(place)];
}

void BinaryObjectTable::growSlots()
{
    const auto before = std::exchange(m_slots, decltype(m_slots)(2 * m_slots.size(), kFree));
    for (const Index index : before)
        if (index != kFree)
            *slotOf(bytesOf(index)) = index;
}

QByteArrayView BinaryObjectTable::bytesOf(Index object) const
{
    const auto next = static_cast<qsizetype>(object) + 1;
    const qsizetype start = m_objects[object].bytes;
    const qsizetype end = next < m_objects.size() ? m_objects[next].bytes : m_bytes.size();
    return {m_bytes.constData() + start, end - start};
}

qsizetype BinaryObjectTable::referencesEnd(Index object) const
{
    const auto next = static_cast<qsizetype>(object) + 1;
    return next < m_objects.size() ? m_objects[next].references : m_references.size();
}

QByteArray BinaryObjectTable::assembled() const
{
    const auto count = static_cast<quint64>(m_objects.size());
    const int referenceSize = bytesFor(count);
    const auto headSize = static_cast<qsizetype>(format::kHead.size());
    const qsizetype table = headSize + m_bytes.size() + m_references.size() * referenceSize;
    const int offsetSize = bytesFor(static_cast<quint64>(table));
    QByteArray list(table + m_objects.size() * offsetSize + format::kTrailerSize, Qt::Uninitialized);
    char* const start = list.data();
    char* offset = start + table;
    char* at = std::copy(format::kHead.begin(), format::kHead.end(), start);
    for (Index object = 0; object < count; ++object) {
        offset = putNumber(offset, static_cast<quint64>(at - start), offsetSize);
        at = putObject(at, object, referenceSize);
    }
    const auto sizes = static_cast<quint64>(offsetSize) << 8 | static_cast<quint64>(referenceSize);
    for (const quint64 number : {sizes, count, quint64(0), static_cast<quint64>(table)})
        offset = putNumber(offset, number, 8);
    return list;
}

char* BinaryObjectTable::putObject(char* at, Index object, int referenceSize) const
{
    const QByteArrayView bytes = bytesOf(object);
    at = std::copy(bytes.begin(), bytes.end(), at);
    for (qsizetype i = m_objects[object].references; i < referencesEnd(object); ++i)
        at = putNumber(at, m_references[i], referenceSize);
    return at;
}

} // namespace havrel
