// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/alike_patterns.h"

#include "filters/pattern_filter_def.h"

#include <algorithm>

namespace havrel {

AlikePatterns::AlikePatterns(const PatternFilterDefs& definitions)
    : m_definitions(definitions.begin(), definitions.end())
{
}

bool AlikePatterns::contains(const PatternFilterDefPtr& definition) const
{
    return m_definitions.count(definition) != 0;
}

bool AlikePatterns::insert(const PatternFilterDefPtr& definition)
{
    return m_definitions.insert(definition).second;
}

/// Not their own hash, which depends on what is compiled.
std::size_t AlikePatterns::Hash::operator()(const PatternFilterDefPtr& definition) const
{
    return definition->simple() ? qHashMulti(0, definition->anchorPath(), definition->singlePattern())
                                : qHash(definition->completePattern(), 0);
}

bool AlikePatterns::Equal::operator()(const PatternFilterDefPtr& left, const PatternFilterDefPtr& right) const
{
    return left == right || left->isEqual(*right);
}

bool areEqualPatterns(const PatternFilterDefs& left, const PatternFilterDefs& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const auto& one, const auto& other) {
        return one == other || one->isEqual(*other);
    });
}

} // namespace havrel
