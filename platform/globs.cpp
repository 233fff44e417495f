// SPDX-License-Identifier: MIT
#include "platform/globs.h"

#include "platform/file_names.h"

#include <algorithm>
#include <array>
#include <atomic>

#include <fnmatch.h>

namespace havrel::platform {
namespace {

constexpr qsizetype kShortPattern = 256; // longer patterns are converted on the heap

std::atomic<GlobMatcher>& currentMatcher() noexcept
{
    static std::atomic<GlobMatcher> matcher{&::fnmatch};
    return matcher;
}

bool isShortASCII(QStringView text)
{
    return text.size() < kShortPattern &&
           std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80; });
}

} // namespace

int matchGlob(QStringView pattern, const char* subject)
{
    const GlobMatcher matcher = currentMatcher().load(std::memory_order_relaxed);
    if (!isShortASCII(pattern))
        return matcher(bytesOfFileName(pattern).constData(), subject, FNM_PERIOD);
    std::array<char, kShortPattern> bytes;
    char* const end = std::transform(
        pattern.begin(), pattern.end(), bytes.begin(), [](QChar unit) { return static_cast<char>(unit.unicode()); });
    *end = '\0';
    return matcher(bytes.data(), subject, FNM_PERIOD);
}

GlobMatcher replaceGlobMatcher(GlobMatcher matcher) noexcept
{
    return currentMatcher().exchange(matcher ? matcher : &::fnmatch);
}

} // namespace havrel::platform
