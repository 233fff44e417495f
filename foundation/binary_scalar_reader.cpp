// SPDX-License-Identifier: MIT
#include "foundation/binary_scalar_reader.h"

#include "foundation/binary_property_list.h"
#include "foundation/binary_property_list_bytes.h"
#include "foundation/reference_date.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace havrel {
namespace {

namespace format = binary_property_list;
using Bytes = BinaryPropertyListBytes;

QVariant fail(Bytes& bytes, const QString& fault)
{
    bytes.fail(fault);
    return {};
}

quint8 lowHalfAt(const Bytes& bytes, quint64 start)
{
    return bytes.byteAt(start) & 0x0F;
}

QVariant unknownType(Bytes& bytes, quint64 start)
{
    return fail(bytes,
                QStringLiteral("it holds an object of the unknown type 0x%1")
                    .arg(bytes.byteAt(start), 2, 16, QLatin1Char('0')));
}

QVariant simple(Bytes& bytes, quint64 start)
{
    switch (bytes.byteAt(start)) {
    case format::Null:
        return QVariant::fromValue(nullptr);
    case format::False:
        return false;
    case format::True:
        return true;
    default:
        return unknownType(bytes, start);
    }
}

/// Sixteen bytes at \p start, of which the lower 64 bits must be all that matters.
QVariant wideInteger(Bytes& bytes, quint64 start)
{
    const quint64 high = bytes.unsignedAt(start, 8);
    const quint64 low = bytes.unsignedAt(start + 8, 8);
    const quint64 signOfLow = low >> 63 ? std::numeric_limits<quint64>::max() : 0;
    if (high == signOfLow)
        return static_cast<qlonglong>(low);
    return high == 0 ? QVariant(static_cast<qulonglong>(low))
                     : fail(bytes, QStringLiteral("an integer has more than 64 bits"));
}

QVariant integer(Bytes& bytes, quint64 start)
{
    const quint8 low = lowHalfAt(bytes, start);
    if (low > 4)
        return fail(bytes, QStringLiteral("an integer is too wide"));
    const quint64 width = quint64(1) << low;
    if (!bytes.holds(start + 1, width))
        return {};
    return width == 16 ? wideInteger(bytes, start + 1) : static_cast<qlonglong>(bytes.unsignedAt(start + 1, width));
}

QVariant real(Bytes& bytes, quint64 start)
{
    const quint8 low = lowHalfAt(bytes, start);
    if (low != 2 && low != 3)
        return fail(bytes, QStringLiteral("a real number has an unknown width"));
    if (!bytes.holds(start + 1, quint64(1) << low))
        return {};
    if (low == 2)
        return static_cast<double>(std::bit_cast<float>(static_cast<quint32>(bytes.unsignedAt(start + 1, 4))));
    return std::bit_cast<double>(bytes.unsignedAt(start + 1, 8));
}

QVariant date(Bytes& bytes, quint64 start)
{
    if (lowHalfAt(bytes, start) != 3)
        return fail(bytes, QStringLiteral("a date has an unknown width"));
    if (!bytes.holds(start + 1, 8))
        return {};
    const QDateTime moment = dateFromReferenceInterval(std::bit_cast<double>(bytes.unsignedAt(start + 1, 8)));
    return moment.isValid() ? QVariant(moment) : fail(bytes, QStringLiteral("a date is out of range"));
}

QVariant data(Bytes& bytes, quint64 start)
{
    const Bytes::Body body = bytes.bodyAt(start, 1);
    return QByteArray(bytes.pointerTo(body.start), static_cast<qsizetype>(body.count));
}

QVariant ascii(Bytes& bytes, quint64 start)
{
    const Bytes::Body body = bytes.bodyAt(start, 1);
    const QByteArrayView text(bytes.pointerTo(body.start), static_cast<qsizetype>(body.count));
    const auto isASCII = [](char c) { return static_cast<quint8>(c) < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isASCII))
        return fail(bytes, QStringLiteral("a string of ASCII characters holds others"));
    return QString::fromLatin1(text);
}

QVariant unicode(Bytes& bytes, quint64 start)
{
    const Bytes::Body body = bytes.bodyAt(start, 2);
    const auto length = static_cast<qsizetype>(body.count);
    QString text(length, Qt::Uninitialized);
    qFromBigEndian<quint16>(bytes.pointerTo(body.start), length, text.data());
    return text;
}

QVariant uid(Bytes& bytes, quint64 start)
{
    const quint64 width = quint64(1) + lowHalfAt(bytes, start);
    if (width > 8)
        return fail(bytes, QStringLiteral("a reference number has more than 64 bits"));
    if (!bytes.holds(start + 1, width))
        return {};
    return QVariant::fromValue(PropertyListUID{bytes.unsignedAt(start + 1, width)});
}

struct Decoder
{
    format::Marker type = format::Null;
    QVariant (*decode)(Bytes&, quint64) = nullptr;
};

constexpr std::array kDecoders{
    Decoder{format::Null, simple},
    Decoder{format::Integer, integer},
    Decoder{format::Real, real},
    Decoder{format::Date, date},
    Decoder{format::Data, data},
    Decoder{format::ASCII, ascii},
    Decoder{format::Unicode, unicode},
    Decoder{format::UID, uid},
};

} // namespace

QVariant binaryScalarAt(BinaryPropertyListBytes& bytes, quint64 start)
{
    for (const Decoder& each : kDecoders) {
        if (each.type == (bytes.byteAt(start) & 0xF0))
            return each.decode(bytes, start);
    }
    return unknownType(bytes, start);
}

} // namespace havrel
