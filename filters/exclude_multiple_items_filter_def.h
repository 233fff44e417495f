// SPDX-License-Identifier: MIT
#pragma once

#include "filters/filter_definition.h"

namespace havrel {

/// A definition that may leave out more than one item. Adds nothing of its own.
///
/// Threads: one thread at a time.
class ExcludeMultipleItemsFilterDef : public FilterDefinition
{
    Q_OBJECT

public:
    using FilterDefinition::FilterDefinition;

protected:
    [[nodiscard]] std::shared_ptr<FilterDefinition> makeCopy() override;
};

} // namespace havrel
