// SPDX-License-Identifier: MIT
#include "platform/collation.h"

#include <algorithm>
#include <limits>
#include <memory>

#include <unicode/ucol.h>
#include <unicode/ustring.h>

namespace havrel::platform {
namespace {

struct CloseCollator
{
    void operator()(UCollator* collator) const { ::ucol_close(collator); }
};
using OwnedCollator = std::unique_ptr<UCollator, CloseCollator>;

OwnedCollator makeCollator()
{
    UErrorCode failure = U_ZERO_ERROR;
    OwnedCollator collator(::ucol_open("", &failure)); // "" is the root
    ::ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &failure);
    ::ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &failure);
    ::ucol_setAttribute(collator.get(), UCOL_STRENGTH, UCOL_TERTIARY, &failure);
    return U_SUCCESS(failure) ? std::move(collator) : nullptr;
}

int32_t lengthOf(QStringView text)
{
    return static_cast<int32_t>(std::min<qsizetype>(text.size(), std::numeric_limits<int32_t>::max()));
}

std::strong_ordering collated(QStringView left, QStringView right)
{
    static const OwnedCollator collator = makeCollator();
    if (!collator)
        return std::strong_ordering::equal;
    return ::ucol_strcoll(collator.get(), left.utf16(), lengthOf(left), right.utf16(), lengthOf(right)) <=> 0;
}

} // namespace

std::strong_ordering collate(QStringView left, QStringView right)
{
    // ICU takes a null pointer for a mistake of the caller, not for an empty text.
    if (left.isNull() || right.isNull())
        return left.size() <=> right.size();
    if (const std::strong_ordering order = collated(left, right); order != 0) // NOLINT(modernize-use-nullptr)
        return order;
    return ::u_strCompare(left.utf16(), lengthOf(left), right.utf16(), lengthOf(right), true) <=> 0;
}

} // namespace havrel::platform
