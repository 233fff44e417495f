// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_ident.h"
#include "diagnostics/log_line_pin.h"
#include "foundation/archivable_classes.h"

#include <memory>
#include <typeinfo>

namespace havrel {
namespace {

constexpr QLatin1StringView kParent{"parent"};
constexpr QLatin1StringView kClassifications{"classmap"};
constexpr QLatin1StringView kSequence{"seq"};
constexpr QLatin1StringView kSubsequence{"subseq"};

constexpr QLatin1StringView kRootClass{"NSObject"};
constexpr QLatin1StringView kIdentClass{"LogLineIdent"};
constexpr QLatin1StringView kPinClass{"LogLinePin"};

LogLineIdentPtr lineIn(const QVariant& object)
{
    return object.metaType() == QMetaType::fromType<LogLineIdentPtr>() ? object.value<LogLineIdentPtr>() : nullptr;
}

template<class Line>
bool isExactly(const QVariant& object)
{
    const LogLineIdentPtr line = lineIn(object);
    if (!line)
        return false;
    const LogLineIdent& found = *line;
    return typeid(found) == typeid(Line);
}

template<class Line>
ArchivableClass rowOf(const QString& name, const QStringList& superclasses)
{
    ArchivableClass row;
    row.name = name;
    row.superclasses = superclasses;
    row.isInstance = isExactly<Line>;
    row.identity = [](const QVariant& object) -> const void* { return lineIn(object).get(); };
    row.encode = [](const QVariant& object, Encoder& encoder) { lineIn(object)->encodeWithCoder(encoder); };
    row.decode = [](Decoder& decoder) { return QVariant::fromValue(Line::withCoder(decoder)); };
    return row;
}

} // namespace

void LogLineIdent::encodeWithCoder(Encoder& encoder) const
{
    const QVariant above = m_parent ? QVariant::fromValue(m_parent) : QVariant();
    if (encoder.allowsKeyedCoding()) {
        encoder.encodeObject(above, kParent);
        encoder.encodeInteger(static_cast<qint32>(classifications()), kClassifications);
        encoder.encodeInteger(static_cast<qint64>(m_sequence), kSequence);
        encoder.encodeInteger(static_cast<qint64>(count()), kSubsequence);
        return;
    }
    encoder.encodeObject(above);
    encoder.encodeUnsigned32(classifications());
    encoder.encodeUnsigned32(static_cast<quint32>(m_sequence));
    encoder.encodeUnsigned32(static_cast<quint32>(count()));
}

LogLineIdent::Fields LogLineIdent::fieldsFrom(Decoder& decoder)
{
    Fields fields;
    if (decoder.allowsKeyedCoding()) {
        fields.parent = lineIn(decoder.decodeObject({kIdentClass}, kParent));
        fields.classifications = static_cast<std::uint32_t>(decoder.decodeInteger(kClassifications));
        fields.sequence = static_cast<std::uint64_t>(decoder.decodeInteger(kSequence));
        fields.subsequence = static_cast<std::uint64_t>(decoder.decodeInteger(kSubsequence));
        return fields;
    }
    fields.parent = lineIn(decoder.decodeObject());
    fields.classifications = decoder.decodeUnsigned32();
    fields.sequence = decoder.decodeUnsigned32();
    fields.subsequence = decoder.decodeUnsigned32();
    return fields;
}

void LogLineIdent::restore(const Fields& fields) noexcept
{
    m_classifications.store(fields.classifications, std::memory_order_relaxed);
    m_subsequence.store(fields.subsequence, std::memory_order_relaxed);
}

LogLineIdentPtr LogLineIdent::withCoder(Decoder& decoder)
{
    const Fields fields = fieldsFrom(decoder);
    auto line = std::make_shared<LogLineIdent>(fields.parent, fields.sequence);
    line->restore(fields);
    return line;
}

LogLineIdentPtr LogLinePin::withCoder(Decoder& decoder)
{
    const Fields fields = fieldsFrom(decoder);
    auto pin = std::make_shared<LogLinePin>(LogLineIdent(fields.parent, fields.sequence));
    pin->restore(fields);
    return pin;
}

ArchivableClass logLineIdentArchivableClass()
{
    return rowOf<LogLineIdent>(kIdentClass, {kRootClass});
}

ArchivableClass logLinePinArchivableClass()
{
    return rowOf<LogLinePin>(kPinClass, {kIdentClass, kRootClass});
}

} // namespace havrel
