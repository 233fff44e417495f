// SPDX-License-Identifier: MIT
#include "filters/exclude_multiple_items_filter_def.h"

namespace havrel {

std::shared_ptr<FilterDefinition> ExcludeMultipleItemsFilterDef::makeCopy()
{
    return std::make_shared<ExcludeMultipleItemsFilterDef>();
}

} // namespace havrel
