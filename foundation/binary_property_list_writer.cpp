// SPDX-License-Identifier: MIT
#include "foundation/binary_property_list.h"
#include "foundation/property_list_kind.h"
#include "foundation/reference_date.h"

#include <QHash>
#include <QtEndian>

#include <bit>
#include <limits>
#include <vector>

namespace havrel {
namespace {

using namespace binary_property_list;
using Kind = PropertyListKind;

int bytesFor(quint64 number)
{
    if (number <= std::numeric_limits<quint8>::max())
        return 1;
    if (number <= std::numeric_limits<quint16>::max())
        return 2;
    return number <= std::numeric_limits<quint32>::max() ? 4 : 8;
}

void appendNumber(QByteArray& bytes, quint64 number, int width)
{
    const quint64 bigEndian = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char*>(&bigEndian) + (8 - width), width);
}

void appendMarker(QByteArray& bytes, int type, int low)
{
    bytes.append(static_cast<char>(type | low));
}

void appendUnsigned(QByteArray& bytes, quint64 number)
{
    const bool needsSign = number > quint64(std::numeric_limits<qint64>::max());
    const int width = needsSign ? 16 : bytesFor(number);
    appendMarker(bytes, Integer, std::countr_zero(static_cast<unsigned>(width)));
    if (needsSign)
        appendNumber(bytes, 0, 8);
    appendNumber(bytes, number, qMin(width, 8));
}

void appendSigned(QByteArray& bytes, qint64 number)
{
    if (number >= 0)
        return appendUnsigned(bytes, static_cast<quint64>(number));
    appendMarker(bytes, Integer, 3);
    appendNumber(bytes, static_cast<quint64>(number), 8);
}

void appendDouble(QByteArray& bytes, int type, double number)
{
    appendMarker(bytes, type, 3);
    appendNumber(bytes, std::bit_cast<quint64>(number), 8);
}

void appendCount(QByteArray& bytes, int type, qsizetype count)
{
    if (count < kCountFollows)
        return appendMarker(bytes, type, static_cast<int>(count));
    appendMarker(bytes, type, kCountFollows);
    appendUnsigned(bytes, static_cast<quint64>(count));
}

void appendString(QByteArray& bytes, const QString& text)
{
    const auto isASCII = [](QChar c) { return c.unicode() < 0x80; };
    if (std::all_of(text.begin(), text.end(), isASCII)) {
        appendCount(bytes, ASCII, text.size());
        bytes.append(text.toLatin1());
        return;
    }
    appendCount(bytes, Unicode, text.size());
    const qsizetype start = bytes.size();
    bytes.resize(start + 2 * text.size());
    qToBigEndian<quint16>(text.constData(), text.size(), bytes.data() + start);
}

void appendUID(QByteArray& bytes, PropertyListUID uid)
{
    const int width = bytesFor(uid.number);
    appendMarker(bytes, UID, width - 1);
    appendNumber(bytes, uid.number, width);
}

QByteArray encodedScalar(const QVariant& value, Kind kind)
{
    QByteArray bytes;
    switch (kind) {
    case Kind::Null:
        appendMarker(bytes, Null, 0);
        break;
    case Kind::Bool:
        appendMarker(bytes, Null, value.toBool() ? True : False);
        break;
    case Kind::Signed:
        appendSigned(bytes, value.toLongLong());
        break;
    case Kind::Unsigned:
        appendUnsigned(bytes, value.toULongLong());
        break;
    case Kind::Real:
        appendDouble(bytes, Real, value.toDouble());
        break;
    case Kind::Date:
        appendDouble(bytes, Date, intervalSinceReferenceDate(value.toDateTime()));
        break;
    case Kind::Data:
        appendCount(bytes, Data, value.toByteArray().size());
        bytes.append(value.toByteArray());
        break;
    case Kind::String:
        appendString(bytes, value.toString());
        break;
    case Kind::UID:
        appendUID(bytes, value.value<PropertyListUID>());
        break;
    case Kind::None:
    case Kind::List:
    case Kind::Map:
        break;
    }
    return bytes;
}

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
    return addScalar(encodedScalar(value, kind));
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
    const quint32 index = addContainer(Array, list.size(), static_cast<std::size_t>(list.size()));
    for (const QVariant& element : list)
        refer(index, add(element, depth));
    return index;
}

quint32 Writer::addMap(const QVariantMap& map, int depth)
{
    const quint32 index = addContainer(Dictionary, map.size(), 2 * static_cast<std::size_t>(map.size()));
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
    QByteArray bytes(kHead.data(), kHead.size());
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
