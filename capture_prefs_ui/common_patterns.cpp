// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/common_patterns.h"

#include <utility>

namespace havrel {

PatternSet::PatternSet(const PatternFilterDefs& patterns)
{
    for (const PatternFilterDefPtr& each : patterns)
        add(each);
}

void PatternSet::add(const PatternFilterDefPtr& pattern)
{
    if (m_members.insert(pattern))
        m_inOrder.append(pattern);
}

bool PatternSet::isEqual(const PatternSet& other) const
{
    return m_inOrder.size() == other.m_inOrder.size() && without(other).m_inOrder.isEmpty();
}

PatternSet PatternSet::intersected(const PatternSet& other) const
{
    PatternSet both;
    for (const PatternFilterDefPtr& each : m_inOrder)
        if (other.contains(each))
            both.add(each);
    return both;
}

PatternSet PatternSet::without(const PatternSet& other) const
{
    PatternSet rest;
    for (const PatternFilterDefPtr& each : m_inOrder)
        if (!other.contains(each))
            rest.add(each);
    return rest;
}

void CommonPatterns::intersect(const PatternFilterDefs& ofFolder)
{
    const PatternSet folder(ofFolder);
    if (std::exchange(m_isFirst, false)) {
        m_patterns = folder;
        return;
    }
    // A folder differs from the common ones in the end exactly when it differs from what was common before it, or
    // makes that smaller: then the folders before it differ.
    if (folder.isEqual(m_patterns))
        return;
    m_differ = true;
    m_patterns = m_patterns.intersected(folder);
}

PatternFilterDefs ownPatterns(const PatternFilterDefs& ofFolder, const PatternSet& common)
{
    return PatternSet(ofFolder).without(common).inOrder();
}

PatternFilterDefs
withOwnPatterns(const PatternFilterDefs& edited, const PatternFilterDefs& own, const PatternSet& common)
{
    PatternSet added;
    for (const PatternFilterDefPtr& each : edited)
        if (!common.contains(each))
            added.add(each);
    if (added.inOrder().isEmpty())
        return edited + own;
    PatternFilterDefs merged = edited;
    for (const PatternFilterDefPtr& each : own)
        if (!added.contains(each))
            merged.append(each);
    return merged;
}

} // namespace havrel
