// SPDX-License-Identifier: MIT
#include "filters/pattern_fault.h"

#include <array>

namespace havrel {
namespace {

struct FaultText
{
    PatternFault fault;
    QLatin1StringView text;
};

constexpr auto kTexts = std::to_array<FaultText>({
    {PatternFault::SuccessiveSlashes, QLatin1StringView{"Successive // is not allowed here"}},
    {PatternFault::TooManyLeadingSlashes, QLatin1StringView{"Too many leading /"}},
    {PatternFault::TrailingSlash, QLatin1StringView{"Trailing / is not allowed here"}},
    {PatternFault::Incomplete, QLatin1StringView{"Incomplete pattern"}},
    {PatternFault::SlashInPattern, QLatin1StringView{"Pattern cannot contain /"}},
    {PatternFault::TrailingSlashWithoutOptions, QLatin1StringView{"Trailing / with no options"}},
    {PatternFault::TripleSlash, QLatin1StringView{"Invalid /// encountered"}},
    {PatternFault::AbsoluteNotPermitted, QLatin1StringView{"Absolute path not permitted here"}},
    {PatternFault::NothingDefined, QLatin1StringView{"No pattern defined"}},
});

} // namespace

QString patternFaultText(PatternFault fault)
{
    for (const FaultText& row : kTexts)
        if (row.fault == fault)
            return row.text;
    return {};
}

} // namespace havrel
