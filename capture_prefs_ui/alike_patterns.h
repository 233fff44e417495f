// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_filter_defs.h"

#include <unordered_set>

namespace havrel {

/// A set of definitions of which no two are equal, to find an equal one among many. They must not change meanwhile.
///
/// Threads: const members any thread, others one at a time.
class AlikePatterns
{
public:
    AlikePatterns() = default;
    explicit AlikePatterns(const PatternFilterDefs& definitions);

    [[nodiscard]] bool contains(const PatternFilterDefPtr& definition) const;
    /// Puts \p definition in. \return false when an equal one is in already.
    bool insert(const PatternFilterDefPtr& definition);

private:
    struct Hash
    {
        std::size_t operator()(const PatternFilterDefPtr& definition) const;
    };
    struct Equal
    {
        bool operator()(const PatternFilterDefPtr& left, const PatternFilterDefPtr& right) const;
    };

    std::unordered_set<PatternFilterDefPtr, Hash, Equal> m_definitions;
};

/// Whether they hold equal definitions at each place.
[[nodiscard]] bool areEqualPatterns(const PatternFilterDefs& left, const PatternFilterDefs& right);

} // namespace havrel
