// SPDX-License-Identifier: MIT
#include "foundation/binary_scalar_writer.h"

#include "foundation/binary_property_list.h"
#include "foundation/reference_date.h"

#include <QtEndian>

#include <algorithm>
#include <bit>
#include <limits>

namespace havrel {
namespace {

namespace format = binary_property_list;
using Kind = PropertyListKind;

void appendMarker(BinaryBytes& bytes, int type, int low)
{
    bytes.append(static_cast<char>(type | low));
}

void appendNumber(BinaryBytes& bytes, quint64 number, int width)
{
    const qsizetype start = bytes.size();
    bytes.resize(start + width);
    (void)putNumber(bytes.data() + start, number, width);
}

void appendUnsigned(BinaryBytes& bytes, quint64 number)
{
    const bool needsSign = number > quint64(std::numeric_limits<qint64>::max());
    const int width = needsSign ? 16 : bytesFor(number);
    appendMarker(bytes, format::Integer, std::countr_zero(static_cast<unsigned>(width)));
    if (needsSign)
        appendNumber(bytes, 0, 8);
    appendNumber(bytes, number, qMin(width, 8));
}

void appendSigned(BinaryBytes& bytes, qint64 number)
{
    if (number >= 0)
        return appendUnsigned(bytes, static_cast<quint64>(number));
    appendMarker(bytes, format::Integer, 3);
    appendNumber(bytes, static_cast<quint64>(number), 8);
}

void appendDouble(BinaryBytes& bytes, int type, double number)
{
    appendMarker(bytes, type, 3);
    appendNumber(bytes, std::bit_cast<quint64>(number), 8);
}

/// Looks at every unit before it answers: that is what compilers turn into few instructions.
bool isASCII(const QString& text)
{
    char16_t bits = 0;
    for (const QChar unit : text)
        bits = static_cast<char16_t>(bits | unit.unicode());
    return bits < 0x80;
}

void appendASCII(BinaryBytes& bytes, const QString& text)
{
    appendCount(bytes, format::ASCII, text.size());
    const qsizetype start = bytes.size();
    bytes.resize(start + text.size());
    std::transform(
        text.begin(), text.end(), bytes.begin() + start, [](QChar unit) { return static_cast<char>(unit.unicode()); });
}

void appendUnicode(BinaryBytes& bytes, const QString& text)
{
    appendCount(bytes, format::Unicode, text.size());
    const qsizetype start = bytes.size();
    bytes.resize(start + 2 * text.size());
    qToBigEndian<quint16>(text.constData(), text.size(), bytes.data() + start);
}

void appendData(BinaryBytes& bytes, const QByteArray& data)
{
    appendCount(bytes, format::Data, data.size());
    bytes.append(data.constData(), data.size());
}

void appendUID(BinaryBytes& bytes, PropertyListUID uid)
{
    const int width = bytesFor(uid.number);
    appendMarker(bytes, format::UID, width - 1);
    appendNumber(bytes, uid.number, width);
}

} // namespace

int bytesFor(quint64 number)
{
    if (number <= std::numeric_limits<quint8>::max())
        return 1;
    if (number <= std::numeric_limits<quint16>::max())
        return 2;
    return number <= std::numeric_limits<quint32>::max() ? 4 : 8;
}

char* putNumber(char* at, quint64 number, int width)
{
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        *at++ = static_cast<char>(number >> shift);
    return at;
}

void appendCount(BinaryBytes& bytes, int type, qsizetype count)
{
    if (count < format::kCountFollows)
        return appendMarker(bytes, type, static_cast<int>(count));
    appendMarker(bytes, type, format::kCountFollows);
    appendUnsigned(bytes, static_cast<quint64>(count));
}

void appendBinaryString(BinaryBytes& bytes, const QString& text)
{
    isASCII(text) ? appendASCII(bytes, text) : appendUnicode(bytes, text);
}

void appendBinaryScalar(BinaryBytes& bytes, const QVariant& value, Kind kind)
{
    switch (kind) {
    case Kind::Null:
        appendMarker(bytes, format::Null, 0);
        break;
    case Kind::Bool:
        appendMarker(bytes, format::Null, value.toBool() ? format::True : format::False);
        break;
    case Kind::Signed:
        appendSigned(bytes, value.toLongLong());
        break;
    case Kind::Unsigned:
        appendUnsigned(bytes, value.toULongLong());
        break;
    case Kind::Real:
        appendDouble(bytes, format::Real, value.toDouble());
        break;
    case Kind::Date:
        appendDouble(bytes, format::Date, intervalSinceReferenceDate(value.toDateTime()));
        break;
    case Kind::Data:
        appendData(bytes, value.toByteArray());
        break;
    case Kind::String:
        appendBinaryString(bytes, value.toString());
        break;
    case Kind::UID:
        appendUID(bytes, value.value<PropertyListUID>());
        break;
    case Kind::None:
    case Kind::List:
    case Kind::Map:
        break;
    }
}

} // namespace havrel
