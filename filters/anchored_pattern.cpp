// SPDX-License-Identifier: MIT
#include "filters/anchored_pattern.h"

namespace havrel {
namespace {

/// The fault of the slashes from \p first up to but not including \p end in an anchor of \p size units.
PatternFault faultOfSlashes(qsizetype first, qsizetype end, qsizetype size)
{
    const qsizetype count = end - first;
    if (first == 0)
        return count > 1 || end == size ? PatternFault::TooManyLeadingSlashes : PatternFault::None;
    if (count > 1)
        return PatternFault::SuccessiveSlashes; // also at the end of the anchor
    return end == size ? PatternFault::TrailingSlash : PatternFault::None;
}

} // namespace

PatternFault faultOfAnchor(QStringView anchorPath)
{
    PatternFault fault = PatternFault::None;
    qsizetype slash = anchorPath.indexOf(u'/');
    while (slash >= 0 && fault == PatternFault::None) {
        qsizetype end = slash + 1;
        while (end < anchorPath.size() && anchorPath[end] == u'/')
            ++end;
        fault = faultOfSlashes(slash, end, anchorPath.size());
        slash = anchorPath.indexOf(u'/', end);
    }
    return fault;
}

PatternFault faultOfSinglePattern(QStringView singlePattern)
{
    if (singlePattern.isEmpty())
        return PatternFault::Incomplete;
    return singlePattern.contains(u'/') ? PatternFault::SlashInPattern : PatternFault::None;
}

QString completeTextOf(const AnchoredPattern& anchored)
{
    const QLatin1StringView depth{anchored.options.depth == kIndefiniteDepth ? "+" : "0"};
    return anchored.anchorPath + QLatin1StringView{"//"} + anchored.singlePattern + u'/' + depth + u':' +
           typeSuffixOf(anchored.options.type);
}

} // namespace havrel
