// SPDX-License-Identifier: MIT
#include "foundation/binary_property_list.h"
#include "foundation/property_list_kind.h"
#include "foundation/reference_date.h"

#include <QtEndian>

#include <bit>
#include <limits>
#include <vector>

namespace havrel {
namespace {

using namespace binary_property_list;

/// One reading. The first fault is kept; from then on every object is nil and nothing more is read.
class Reader
{
public:
    explicit Reader(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    PropertyListReading read();

private:
    /// Where an object's content lies and how many units it has.
    struct Body
    {
        quint64 start;
        quint64 count;
    };
    using Decode = QVariant (Reader::*)(quint64 start, quint8 low);

    bool readTrailer();
    bool trailerHolds(quint64 size) const;
    QVariant objectAt(quint64 index, int depth);
    QVariant container(quint64 index, int depth);
    QVariant scalar(quint64 start);
    QVariant list(const Body& body, int depth);
    QVariant map(const Body& body, int depth);

    QVariant simple(quint64 start, quint8 low);
    QVariant integer(quint64 start, quint8 low);
    QVariant wideInteger(quint64 start);
    QVariant real(quint64 start, quint8 low);
    QVariant date(quint64 start, quint8 low);
    QVariant data(quint64 start, quint8 low);
    QVariant ascii(quint64 start, quint8 low);
    QVariant unicode(quint64 start, quint8 low);
    QVariant uid(quint64 start, quint8 low);

    Body bodyAt(quint64 start, quint8 low, quint64 unitSize);
    bool holds(quint64 start, quint64 length);
    quint64 unsignedAt(quint64 start, int width) const;
    quint8 byteAt(quint64 at) const { return static_cast<quint8>(m_bytes[static_cast<qsizetype>(at)]); }
    const char* pointerTo(quint64 at) const { return m_bytes.constData() + at; }
    QVariant fail(const QString& fault);
    bool failed() const { return !m_fault.isNull(); }

    const QByteArray m_bytes;
    int m_offsetSize = 0;
    int m_referenceSize = 0;
    quint64 m_count = 0;
    quint64 m_top = 0;
    quint64 m_end = 0; // of the objects: where the offset table begins
    int m_visited = 0;
    std::vector<QVariant> m_scalars; // by index, nil until read: a shared one is decoded once
    std::vector<bool> m_open;        // by index: the containers around the current object
    QString m_fault;
    qint64 m_faultCode = property_list_error::kReadCorrupt;
};

PropertyListReading Reader::read()
{
    PropertyListReading reading;
    if (readTrailer()) {
        m_scalars.resize(m_count);
        m_open.resize(m_count);
        reading.value = objectAt(m_top, 0);
    }
    if (failed()) {
        reading.value.clear();
        reading.error = propertyListReadError(m_fault, m_faultCode);
    }
    return reading;
}

bool Reader::readTrailer()
{
    if (!m_bytes.startsWith(QByteArrayView(kHead.data(), kHead.size()))) {
        m_faultCode = property_list_error::kReadUnknownVersion;
        return fail(QStringLiteral("its binary version is unknown")).isValid();
    }
    const auto size = static_cast<quint64>(m_bytes.size());
    if (size < kHead.size() + kTrailerSize + 2)
        return fail(QStringLiteral("it is too short")).isValid();
    const quint64 trailer = size - kTrailerSize;
    m_offsetSize = byteAt(trailer + 6);
    m_referenceSize = byteAt(trailer + 7);
    m_count = unsignedAt(trailer + 8, 8);
    m_top = unsignedAt(trailer + 16, 8);
    m_end = unsignedAt(trailer + 24, 8);
    if (!trailerHolds(size))
        return fail(QStringLiteral("its trailer is damaged")).isValid();
    if (m_count > kMostPropertyListObjects)
        return fail(property_list_fault::tooManyValues()).isValid();
    return true;
}

bool Reader::trailerHolds(quint64 size) const
{
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8)
        return false;
    if (m_end <= kHead.size() || m_end > size - kTrailerSize)
        return false;
    const quint64 tableSize = size - kTrailerSize - m_end;
    return m_top < m_count && m_count <= tableSize / static_cast<quint64>(m_offsetSize);
}

QVariant Reader::objectAt(quint64 index, int depth)
{
    if (failed())
        return {};
    if (index >= m_count)
        return fail(QStringLiteral("a reference leads outside the table of objects"));
    if (++m_visited > kMostPropertyListObjects)
        return fail(property_list_fault::tooManyValues());
    if (const QVariant& known = m_scalars[index]; known.isValid())
        return known;
    const quint64 entry = m_end + index * static_cast<quint64>(m_offsetSize);
    const quint64 start = unsignedAt(entry, m_offsetSize);
    if (start < kHead.size() || start >= m_end)
        return fail(QStringLiteral("an object lies outside the objects"));
    const int type = byteAt(start) & 0xF0;
    if (type == Array || type == Dictionary)
        return container(index, depth + 1);
    return m_scalars[index] = scalar(start);
}

QVariant Reader::container(quint64 index, int depth)
{
    if (depth > kDeepestPropertyList)
        return fail(property_list_fault::tooDeep());
    if (m_open[index])
        return fail(QStringLiteral("a container holds itself"));
    m_open[index] = true;
    const quint64 start = unsignedAt(m_end + index * static_cast<quint64>(m_offsetSize), m_offsetSize);
    const quint8 marker = byteAt(start);
    const bool isList = (marker & 0xF0) == Array;
    const auto width = static_cast<quint64>(m_referenceSize);
    const Body body = bodyAt(start, marker & 0x0F, isList ? width : 2 * width);
    QVariant value;
    if (!failed())
        value = isList ? list(body, depth) : map(body, depth);
    m_open[index] = false;
    return value;
}

QVariant Reader::list(const Body& body, int depth)
{
    QVariantList elements;
    for (quint64 i = 0; i < body.count && !failed(); ++i) {
        const quint64 at = body.start + i * static_cast<quint64>(m_referenceSize);
        elements.append(objectAt(unsignedAt(at, m_referenceSize), depth));
    }
    return elements;
}

QVariant Reader::map(const Body& body, int depth)
{
    QVariantMap entries;
    const auto width = static_cast<quint64>(m_referenceSize);
    for (quint64 i = 0; i < body.count && !failed(); ++i) {
        const quint64 at = body.start + i * width;
        const QVariant key = objectAt(unsignedAt(at, m_referenceSize), depth);
        const QVariant value = objectAt(unsignedAt(at + body.count * width, m_referenceSize), depth);
        if (!failed() && key.typeId() != QMetaType::QString)
            return fail(QStringLiteral("a dictionary's key is not a string"));
        entries.insert(key.toString(), value);
    }
    return entries;
}

QVariant Reader::scalar(quint64 start)
{
    const quint8 marker = byteAt(start);
    const quint8 low = marker & 0x0F;
    static constexpr struct
    {
        quint8 type;
        Decode decode;
    } kDecoders[] = {
        {Null, &Reader::simple},
        {Integer, &Reader::integer},
        {Real, &Reader::real},
        {Date, &Reader::date},
        {Data, &Reader::data},
        {ASCII, &Reader::ascii},
        {Unicode, &Reader::unicode},
        {UID, &Reader::uid},
    };
    for (const auto& each : kDecoders) {
        if (each.type == (marker & 0xF0))
            return (this->*each.decode)(start, low);
    }
    return fail(QStringLiteral("it holds an object of the unknown type 0x%1").arg(marker, 2, 16, QLatin1Char('0')));
}

QVariant Reader::simple(quint64 /*start*/, quint8 low)
{
    switch (low) {
    case Null:
        return QVariant::fromValue(nullptr);
    case False:
        return false;
    case True:
        return true;
    default:
        return fail(QStringLiteral("it holds an object of the unknown type 0x0%1").arg(low, 0, 16));
    }
}

QVariant Reader::integer(quint64 start, quint8 low)
{
    if (low > 4)
        return fail(QStringLiteral("an integer is too wide"));
    const int width = 1 << low;
    if (!holds(start + 1, static_cast<quint64>(width)))
        return {};
    if (width == 16)
        return wideInteger(start + 1);
    return static_cast<qlonglong>(unsignedAt(start + 1, width));
}

QVariant Reader::wideInteger(quint64 start)
{
    const quint64 high = unsignedAt(start, 8);
    const quint64 low = unsignedAt(start + 8, 8);
    const bool fitsSigned = high == (low >> 63 ? std::numeric_limits<quint64>::max() : 0);
    if (fitsSigned)
        return static_cast<qlonglong>(low);
    return high == 0 ? QVariant(static_cast<qulonglong>(low))
                     : fail(QStringLiteral("an integer has more than 64 bits"));
}

QVariant Reader::real(quint64 start, quint8 low)
{
    if (low != 2 && low != 3)
        return fail(QStringLiteral("a real number has an unknown width"));
    if (!holds(start + 1, quint64(1) << low))
        return {};
    if (low == 2)
        return static_cast<double>(std::bit_cast<float>(static_cast<quint32>(unsignedAt(start + 1, 4))));
    return std::bit_cast<double>(unsignedAt(start + 1, 8));
}

QVariant Reader::date(quint64 start, quint8 low)
{
    if (low != 3)
        return fail(QStringLiteral("a date has an unknown width"));
    if (!holds(start + 1, 8))
        return {};
    const QDateTime moment = dateFromReferenceInterval(std::bit_cast<double>(unsignedAt(start + 1, 8)));
    return moment.isValid() ? QVariant(moment) : fail(QStringLiteral("a date is out of range"));
}

QVariant Reader::data(quint64 start, quint8 low)
{
    const Body body = bodyAt(start, low, 1);
    return failed() ? QVariant() : QByteArray(pointerTo(body.start), static_cast<qsizetype>(body.count));
}

QVariant Reader::ascii(quint64 start, quint8 low)
{
    const Body body = bodyAt(start, low, 1);
    if (failed())
        return {};
    const QByteArrayView text(pointerTo(body.start), static_cast<qsizetype>(body.count));
    const auto isASCII = [](char c) { return static_cast<quint8>(c) < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isASCII))
        return fail(QStringLiteral("a string of ASCII characters holds others"));
    return QString::fromLatin1(text);
}

QVariant Reader::unicode(quint64 start, quint8 low)
{
    const Body body = bodyAt(start, low, 2);
    if (failed())
        return {};
    const auto length = static_cast<qsizetype>(body.count);
    QString text(length, Qt::Uninitialized);
    qFromBigEndian<quint16>(pointerTo(body.start), length, text.data());
    return text;
}

QVariant Reader::uid(quint64 start, quint8 low)
{
    const int width = low + 1;
    if (width > 8)
        return fail(QStringLiteral("a reference number has more than 64 bits"));
    if (!holds(start + 1, static_cast<quint64>(width)))
        return {};
    return QVariant::fromValue(PropertyListUID{unsignedAt(start + 1, width)});
}

/// The content behind the marker at \p start; a fault when it reaches beyond the objects.
Reader::Body Reader::bodyAt(quint64 start, quint8 low, quint64 unitSize)
{
    Body body{start + 1, low};
    if (low == kCountFollows) {
        const quint8 marker = holds(start + 1, 1) ? byteAt(start + 1) : 0;
        const int width = 1 << (marker & 0x0F);
        if ((marker & 0xF0) != Integer || width > 8 || !holds(start + 2, static_cast<quint64>(width))) {
            fail(QStringLiteral("a count is damaged"));
            return {};
        }
        body = {start + 2 + static_cast<quint64>(width), unsignedAt(start + 2, width)};
    }
    if (body.count > m_end / unitSize || !holds(body.start, body.count * unitSize))
        fail(QStringLiteral("an object reaches beyond the objects"));
    return body;
}

bool Reader::holds(quint64 start, quint64 length)
{
    if (start <= m_end && length <= m_end - start)
        return true;
    fail(QStringLiteral("an object reaches beyond the objects"));
    return false;
}

quint64 Reader::unsignedAt(quint64 start, int width) const
{
    quint64 number = 0;
    for (int i = 0; i < width; ++i)
        number = number << 8 | byteAt(start + static_cast<quint64>(i));
    return number;
}

QVariant Reader::fail(const QString& fault)
{
    if (!failed())
        m_fault = fault;
    return {};
}

} // namespace

PropertyListReading readBinaryPropertyList(const QByteArray& bytes)
{
    return Reader(bytes).read();
}

} // namespace havrel
