// SPDX-License-Identifier: MIT
#pragma once

#include "filters/exclude_multiple_items_filter_def.h"
#include "filters/pattern_filter_defs.h"

#include <optional>

namespace havrel {

/// Leaves out whatever one of its patterns names. Setting another list tells the observers of `patterns`.
///
/// Threads: one thread at a time.
class ExcludePatternsFilterDef : public ExcludeMultipleItemsFilterDef
{
    Q_OBJECT
    Q_PROPERTY(QVariant patterns READ observedPatterns)

public:
    ExcludePatternsFilterDef() = default; ///< \selector init
    /// \throws HVException "Bug" when the archive holds anything but pattern definitions. \selector initWithCoder:
    explicit ExcludePatternsFilterDef(Decoder& decoder);
    void encodeWithCoder(Encoder& encoder) const override; ///< \selector encodeWithCoder:

    /// The patterns; nothing until they are set. \selector patterns
    [[nodiscard]] const std::optional<PatternFilterDefs>& patterns() const noexcept { return m_patterns; }
    void setPatterns(const std::optional<PatternFilterDefs>& patterns); ///< \selector setPatterns:

    /// A new object with the same patterns, which are shared. \selector copyWithZone:
    [[nodiscard]] std::shared_ptr<ExcludePatternsFilterDef> copyWithZone();
    /// ", 3 patterns": the base's text and the count. \selector description
    [[nodiscard]] QString description() const override;
    /// Whether \p other is one, of this class or a subclass, with equal patterns in the same order, or as this one
    /// without any list. \selector isEqual:
    [[nodiscard]] bool isEqual(const FilterDefinition& other) const override;

protected:
    [[nodiscard]] std::shared_ptr<FilterDefinition> makeCopy() override;

private:
    [[nodiscard]] QVariant observedPatterns() const;

    std::optional<PatternFilterDefs> m_patterns;
};

} // namespace havrel
