// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/alike_patterns.h"
#include "filters/pattern_filter_defs.h"

namespace havrel {

/// Patterns without doubles, by equality of the definitions, in the order in which they came.
///
/// Threads: one thread at a time.
class PatternSet
{
public:
    PatternSet() = default;
    explicit PatternSet(const PatternFilterDefs& patterns);

    /// Nothing when an equal one is there.
    void add(const PatternFilterDefPtr& pattern);
    [[nodiscard]] bool contains(const PatternFilterDefPtr& pattern) const { return m_members.contains(pattern); }
    [[nodiscard]] const PatternFilterDefs& inOrder() const noexcept { return m_inOrder; }
    /// Whether both have equal members, whatever the order.
    [[nodiscard]] bool isEqual(const PatternSet& other) const;
    /// Those that \p other has too.
    [[nodiscard]] PatternSet intersected(const PatternSet& other) const;
    /// Those that \p other has not.
    [[nodiscard]] PatternSet without(const PatternSet& other) const;

private:
    PatternFilterDefs m_inOrder;
    AlikePatterns m_members;
};

/// What the folders of a selection have in common, gathered folder by folder.
///
/// Threads: one thread at a time.
class CommonPatterns
{
public:
    /// Takes the patterns of the next folder into account; the first folder's are the common ones so far.
    void intersect(const PatternFilterDefs& ofFolder);

    /// In the order of the first folder.
    [[nodiscard]] const PatternSet& patterns() const noexcept { return m_patterns; }
    /// Whether some folder has patterns that are not common.
    [[nodiscard]] bool differ() const noexcept { return m_differ; }

private:
    PatternSet m_patterns;
    bool m_isFirst = true;
    bool m_differ = false;
};

/// Those of a folder's patterns that are not \p common, each once.
///
/// Threads: one thread at a time.
[[nodiscard]] PatternFilterDefs ownPatterns(const PatternFilterDefs& ofFolder, const PatternSet& common);

/// \p edited, and those of \p own that are not in it: what a folder gets that keeps its own patterns when the common
/// ones were edited. Looks at the own ones only when something is edited that is not common.
///
/// \param own the folder's ownPatterns, with the same \p common.
///
/// Threads: one thread at a time.
[[nodiscard]] PatternFilterDefs
withOwnPatterns(const PatternFilterDefs& edited, const PatternFilterDefs& own, const PatternSet& common);

} // namespace havrel
