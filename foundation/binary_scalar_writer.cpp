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

void appendMarker(QByteArray& bytes, int type, int low)
{
    bytes.append(static_cast<char>(type | low));
}

void appendUnsigned(QByteArray& bytes, quint64 number)
{
    const bool needsSign = number > quint64(std::numeric_limits<qint64>::max());
    const int width = needsSign ? 16 : bytesFor(number);
    appendMarker(bytes, format::Integer, std::countr_zero(static_cast<unsigned>(width)));
    if (needsSign)
        appendNumber(bytes, 0, 8);
    appendNumber(bytes, number, qMin(width, 8));
}

void appendSigned(QByteArray& bytes, qint64 number)
{
    if (number >= 0)
        return appendUnsigned(bytes, static_cast<quint64>(number));
    appendMarker(bytes, format::Integer, 3);
    appendNumber(bytes, static_cast<quint64>(number), 8);
}

void appendDouble(QByteArray& bytes, int type, double number)
{
    appendMarker(bytes, type, 3);
    appendNumber(bytes, std::bit_cast<quint64>(number), 8);
}

void appendString(QByteArray& bytes, const QString& text)
{
    const auto isASCII = [](QChar c) { return c.unicode() < 0x80; };
    if (std::all_of(text.begin(), text.end(), isASCII)) {
        appendCount(bytes, format::ASCII, text.size());
        bytes.append(text.toLatin1());
        return;
    }
    appendCount(bytes, format::Unicode, text.size());
    const qsizetype start = bytes.size();
    bytes.resize(start + 2 * text.size());
    qToBigEndian<quint16>(text.constData(), text.size(), bytes.data() + start);
}

void appendUID(QByteArray& bytes, PropertyListUID uid)
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

void appendNumber(QByteArray& bytes, quint64 number, int width)
{
    const quint64 bigEndian = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char*>(&bigEndian) + (8 - width), width);
}

void appendCount(QByteArray& bytes, int type, qsizetype count)
{
    if (count < format::kCountFollows)
        return appendMarker(bytes, type, static_cast<int>(count));
    appendMarker(bytes, type, format::kCountFollows);
    appendUnsigned(bytes, static_cast<quint64>(count));
}

QByteArray encodedBinaryScalar(const QVariant& value, Kind kind)
{
    QByteArray bytes;
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
        appendCount(bytes, format::Data, value.toByteArray().size());
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

} // namespace havrel
