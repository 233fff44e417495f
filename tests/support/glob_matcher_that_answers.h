// SPDX-License-Identifier: MIT
#pragma once

#include "platform/globs.h"

namespace havrel {

/// Puts a matcher that answers \p kOutcome in place of the C library's as long as it lives.
template<int kOutcome>
class GlobMatcherThatAnswers
{
public:
    GlobMatcherThatAnswers()
        : m_previous(platform::replaceGlobMatcher([](const char*, const char*, int) { return kOutcome; }))
    {
    }
    ~GlobMatcherThatAnswers() { platform::replaceGlobMatcher(m_previous); }
    GlobMatcherThatAnswers(const GlobMatcherThatAnswers&) = delete;
    GlobMatcherThatAnswers& operator=(const GlobMatcherThatAnswers&) = delete;
    GlobMatcherThatAnswers(GlobMatcherThatAnswers&&) = delete;
    GlobMatcherThatAnswers& operator=(GlobMatcherThatAnswers&&) = delete;

private:
    platform::GlobMatcher m_previous;
};

} // namespace havrel
