// SPDX-License-Identifier: MIT
#include "filters/filter_definition.h"

#include "filters/filter_archiving.h"

namespace havrel {
namespace {

// Here, because every program that has a definition has its base.
[[maybe_unused]] const bool kRegistered = registerFilterDefinitions();

} // namespace

FilterDefinition::FilterDefinition(Decoder& /*decoder*/) {}

void FilterDefinition::encodeWithCoder(Encoder& /*encoder*/) const {}

QString FilterDefinition::description() const
{
    return QLatin1StringView{""};
}

bool FilterDefinition::isEqual(const FilterDefinition& other) const
{
    return this == &other;
}

std::shared_ptr<FilterDefinition> FilterDefinition::makeCopy()
{
    return std::make_shared<FilterDefinition>();
}

} // namespace havrel
