// SPDX-License-Identifier: MIT
#include "foundation/archivable_classes.h"
#include "foundation/index_set.h"
#include "foundation/keyed_archive.h"
#include "foundation/property_list.h"

#include <optional>

namespace havrel {
namespace {

/// \source the platform's layout of archived index sets: one range as two numbers; several as one block of bytes, in
/// which each location and length goes in groups of seven bits, the lowest first, with 0x80 set on all but the last.
constexpr QLatin1StringView kRangeCount{"NSRangeCount"};
constexpr QLatin1StringView kLocation{"NSLocation"};
constexpr QLatin1StringView kLength{"NSLength"};
constexpr QLatin1StringView kRangeData{"NSRangeData"};

using Range = IndexSet::Range;

void appendGroups(QByteArray& bytes, quint64 number)
{
    while (number >= 0x80) {
        bytes.append(static_cast<char>(0x80 | (number & 0x7F)));
        number >>= 7;
    }
    bytes.append(static_cast<char>(number));
}

/// The number at \p at, which moves behind it; nothing when the bytes end or it has more than 64 bits.
std::optional<quint64> takeGroups(const QByteArray& bytes, qsizetype& at)
{
    quint64 number = 0;
    for (int shift = 0; shift < 64 && at < bytes.size(); shift += 7) {
        const auto group = static_cast<quint8>(bytes[at++]);
        number |= static_cast<quint64>(group & 0x7F) << shift;
        if (group < 0x80)
            return number;
    }
    return std::nullopt;
}

/// Adds a range that lies behind all that are there; refuses others and what would make the set too large.
void addRange(IndexSet& set, const Range& range, Decoder& decoder)
{
    const auto room = static_cast<quint64>(kMostPropertyListObjects) - set.count();
    const bool isBehind = set.isEmpty() || range.location > *(set.end() - 1);
    const bool wraps = range.length > 0 && range.location + (range.length - 1) < range.location;
    if (range.length > room || !isBehind || wraps)
        raiseInvalidArchive(QStringLiteral("a set of indexes is damaged or too large"));
    decoder.charge(range.length);
    for (quint64 i = 0; i < range.length; ++i)
        set.addIndex(range.location + i);
}

void encode(const QVariant& object, Encoder& encoder)
{
    const auto set = object.value<IndexSet>();
    encoder.charge(set.count());
    const std::vector<Range> ranges = set.ranges();
    encoder.encodeInteger(static_cast<qint64>(ranges.size()), kRangeCount);
    if (ranges.size() == 1) {
        encoder.encodeInteger(static_cast<qint64>(ranges.front().location), kLocation);
        encoder.encodeInteger(static_cast<qint64>(ranges.front().length), kLength);
    }
    if (ranges.size() <= 1)
        return;
    QByteArray bytes;
    for (const Range& range : ranges) {
        appendGroups(bytes, range.location);
        appendGroups(bytes, range.length);
    }
    encoder.encodeBytes(bytes, kRangeData);
}

void addRangeData(IndexSet& set, Decoder& decoder, qint64 count)
{
    const QByteArray bytes = decoder.decodeBytes(kRangeData);
    qsizetype at = 0;
    for (qint64 i = 0; i < count; ++i) {
        const auto location = takeGroups(bytes, at);
        const auto length = takeGroups(bytes, at);
        if (!location || !length)
            raiseInvalidArchive(QStringLiteral("a set of indexes is cut"));
        addRange(set, {*location, *length}, decoder);
    }
}

QVariant decode(Decoder& decoder)
{
    IndexSet set;
    const qint64 count = decoder.decodeInteger(kRangeCount);
    if (count == 1)
        addRange(set,
                 {static_cast<quint64>(decoder.decodeInteger(kLocation)),
                  static_cast<quint64>(decoder.decodeInteger(kLength))},
                 decoder);
    else
        addRangeData(set, decoder, count);
    return QVariant::fromValue(set);
}

} // namespace

ArchivableClass indexSetArchivableClass()
{
    ArchivableClass row;
    row.name = QStringLiteral("NSIndexSet");
    row.superclasses = {QStringLiteral("NSObject")};
    row.isInstance = [](const QVariant& object) { return object.metaType() == QMetaType::fromType<IndexSet>(); };
    row.encode = encode;
    row.decode = decode;
    return row;
}

} // namespace havrel
