// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_filter_def.h"

namespace havrel {

/// The row that stands for "and other patterns" when items with different patterns are edited together.
///
/// Threads: one thread at a time.
class PlaceholderPatternFilterDef : public PatternFilterDef
{
    Q_OBJECT

public:
    using PatternFilterDef::PatternFilterDef;

    [[nodiscard]] QString canonicalPattern() override; ///< Empty. \selector canonicalPattern
    /// Whether \p other is of exactly this class. \selector isEqual:
    [[nodiscard]] bool isEqual(const FilterDefinition& other) const override;
    [[nodiscard]] bool multiplePatternsPlaceholder() const noexcept override { return true; }

protected:
    [[nodiscard]] std::shared_ptr<FilterDefinition> makeCopy() override; ///< itself
};

} // namespace havrel
