// SPDX-License-Identifier: MIT
#include "platform/regular_expressions.h"

#include <limits>
#include <memory>

#include <unicode/uregex.h>

namespace havrel::platform {
namespace {

constexpr std::uint32_t kFlags = UREGEX_DOTALL | UREGEX_UWORD;

struct CloseExpression
{
    void operator()(URegularExpression* expression) const { uregex_close(expression); }
};

} // namespace

RegularExpressionVerdict judgeRegularExpression(QStringView pattern)
{
    if (pattern.size() > std::numeric_limits<std::int32_t>::max())
        return {U_REGEX_PATTERN_TOO_BIG, 0, -1};
    UParseError place{0, -1, {}, {}};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<URegularExpression, CloseExpression> expression{
        uregex_open(pattern.utf16(), static_cast<std::int32_t>(pattern.size()), kFlags, &place, &status)};
    if (U_SUCCESS(status))
        return {};
    return {status, place.line, place.offset};
}

} // namespace havrel::platform
