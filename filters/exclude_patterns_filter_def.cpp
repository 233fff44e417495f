// SPDX-License-Identifier: MIT
#include "filters/exclude_patterns_filter_def.h"

#include "diagnostics/exception.h"
#include "filters/pattern_filter_def.h"
#include "foundation/coder.h"

#include <algorithm>

namespace havrel {
namespace {

constexpr QLatin1StringView kPatternsKey{"patterns"};

QVariantList archivableList(const PatternFilterDefs& patterns)
{
    QVariantList list;
    for (const PatternFilterDefPtr& pattern : patterns)
        list << QVariant::fromValue(std::static_pointer_cast<FilterDefinition>(pattern));
    return list;
}

PatternFilterDefPtr patternIn(const QVariant& element)
{
    auto pattern = std::dynamic_pointer_cast<PatternFilterDef>(element.value<std::shared_ptr<FilterDefinition>>());
    if (!pattern)
        HVException::exceptionWithName(exception_name::kBug, QStringLiteral("invalid archive data"))
            .setObject(element)
            .raise();
    return pattern;
}

bool areEqual(const PatternFilterDefs& left, const PatternFilterDefs& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const auto& one, const auto& other) {
        return one->isEqual(*other);
    });
}

} // namespace

ExcludePatternsFilterDef::ExcludePatternsFilterDef(Decoder& decoder)
    : ExcludeMultipleItemsFilterDef(decoder)
{
    const QVariant list =
        decoder.decodeObject({QStringLiteral("NSArray"), QStringLiteral("PatternFilterDef")}, kPatternsKey);
    if (!list.isValid())
        return;
    if (list.typeId() != QMetaType::QVariantList) // a definition is allowed inside the list only
        patternIn({});
    PatternFilterDefs patterns;
    for (const QVariant& element : list.toList())
        patterns << patternIn(element);
    m_patterns = patterns;
}

void ExcludePatternsFilterDef::encodeWithCoder(Encoder& encoder) const
{
    encoder.encodeObject(m_patterns ? archivableList(*m_patterns) : QVariant(), kPatternsKey);
}

void ExcludePatternsFilterDef::setPatterns(const std::optional<PatternFilterDefs>& patterns)
{
    assign(m_patterns, patterns, "patterns");
}

/// The list of patterns; invalid until it is set.
QVariant ExcludePatternsFilterDef::observedPatterns() const
{
    return observedValue(m_patterns);
}

std::shared_ptr<ExcludePatternsFilterDef> ExcludePatternsFilterDef::copyWithZone()
{
    return std::static_pointer_cast<ExcludePatternsFilterDef>(makeCopy());
}

QString ExcludePatternsFilterDef::description() const
{
    const qsizetype count = m_patterns ? m_patterns->size() : 0;
    return QStringLiteral("%1, %2 patterns").arg(ExcludeMultipleItemsFilterDef::description()).arg(count);
}

bool ExcludePatternsFilterDef::isEqual(const FilterDefinition& other) const
{
    const auto* same = dynamic_cast<const ExcludePatternsFilterDef*>(&other);
    if (!same || m_patterns.has_value() != same->m_patterns.has_value())
        return false;
    return !m_patterns || areEqual(*m_patterns, *same->m_patterns);
}

std::shared_ptr<FilterDefinition> ExcludePatternsFilterDef::makeCopy()
{
    auto copy = std::make_shared<ExcludePatternsFilterDef>();
    copy->m_patterns = m_patterns;
    return copy;
}

} // namespace havrel
