// SPDX-License-Identifier: MIT
#include "filters/pattern_component.h"

#include "platform/globs.h"
#include "platform/regular_expressions.h"

namespace havrel {
namespace {

constexpr const char* kSampleName = "name.ext"; // what a glob is tried on; the outcome does not matter
constexpr int kNoMatch = 1;                     // FNM_NOMATCH

constexpr QLatin1StringView kInvalidGlob{"Invalid glob pattern"}; // people read it for regular expressions, too

Validity invalidComponent(const QString& description)
{
    return {filterError(filter_error::kDomain, kInvalidGlob, description)};
}

Validity validateGlob(const QString& component)
{
    const int outcome = platform::matchGlob(component, kSampleName);
    if (outcome == 0 || outcome == kNoMatch)
        return {};
    return invalidComponent(QLatin1StringView{"'"} + component + QLatin1StringView{"' is not a valid glob pattern"});
}

Validity validateRegularExpression(const QString& component)
{
    if (platform::judgeRegularExpression(component).isAccepted())
        return {};
    return invalidComponent(u'/' + component + QLatin1StringView{"/ is not a valid regular expression"});
}

} // namespace

Error filterError(QLatin1StringView domain, QLatin1StringView reason, const QString& description)
{
    return {domain,
            filter_error::kCode,
            {{error_key::kLocalizedFailureReason, QString(reason)}, {error_key::kLocalizedDescription, description}}};
}

Validity validatePatternComponent(const QString& component, PatternType type)
{
    switch (type) {
    case PatternType::Glob:
        return validateGlob(component);
    case PatternType::RegularExpression:
        return validateRegularExpression(component);
    }
    return {filterError(
        filter_error::kInternalDomain, QLatin1StringView{"Internal error"}, QStringLiteral("invalid pattern type"))};
}

} // namespace havrel
