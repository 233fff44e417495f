// SPDX-License-Identifier: MIT
#include "filters/pattern_filter_def.h"
#include "foundation/coder.h"

namespace havrel {
namespace {

constexpr QLatin1StringView kRootKey{"root"};
constexpr QLatin1StringView kCompleteKey{"complete"};
constexpr QLatin1StringView kAnchorKey{"anchor"};
constexpr QLatin1StringView kSingleKey{"single"};
constexpr QLatin1StringView kTypeKey{"type"};
constexpr QLatin1StringView kDepthKey{"depth"};

/// A text, which may be absent.
QVariant archivable(const QString& text)
{
    return text.isNull() ? QVariant() : QVariant(text);
}

QString decodeText(Decoder& decoder, const QString& key)
{
    const QVariant text = decoder.decodeObject({QStringLiteral("NSString")}, key);
    return text.typeId() == QMetaType::QString ? text.toString() : QString();
}

} // namespace

PatternFilterDef::PatternFilterDef(Decoder& decoder)
    : PatternFilterDef()
{
    m_rooted = decoder.decodeBool(kRootKey);
    m_completePattern = decodeText(decoder, kCompleteKey);
    m_anchorPath = decodeText(decoder, kAnchorKey);
    m_singlePattern = decodeText(decoder, kSingleKey);
    m_line.options.type = static_cast<PatternType>(static_cast<qint32>(decoder.decodeInteger(kTypeKey)));
    m_line.options.depth = static_cast<quint64>(decoder.decodeInteger(kDepthKey));
}

void PatternFilterDef::encodeWithCoder(Encoder& encoder) const
{
    encoder.encodeBool(m_rooted, kRootKey);
    if (simple())
        encodeSimpleForm(encoder);
    else
        encoder.encodeObject(m_completePattern, kCompleteKey);
}

void PatternFilterDef::encodeSimpleForm(Encoder& encoder) const
{
    encoder.encodeObject(archivable(m_anchorPath), kAnchorKey);
    encoder.encodeObject(archivable(m_singlePattern), kSingleKey);
    encoder.encodeInteger(static_cast<qint32>(m_line.options.type), kTypeKey);
    encoder.encodeInteger(static_cast<qint64>(m_line.options.depth), kDepthKey);
}

} // namespace havrel
