// SPDX-License-Identifier: MIT
#include "filters/placeholder_pattern_filter_def.h"

#include <typeinfo>

namespace havrel {

QString PlaceholderPatternFilterDef::canonicalPattern()
{
    return QLatin1StringView{""};
}

bool PlaceholderPatternFilterDef::isEqual(const FilterDefinition& other) const
{
    return typeid(other) == typeid(PlaceholderPatternFilterDef);
}

std::shared_ptr<FilterDefinition> PlaceholderPatternFilterDef::makeCopy()
{
    return shared_from_this();
}

} // namespace havrel
