// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

namespace havrel::platform {

/// A function with the shape and the meaning of fnmatch(3).
using GlobMatcher = int (*)(const char* pattern, const char* subject, int flags);

/// Matches \p subject against the glob \p pattern; a leading period must be matched by a period.
///
/// The matcher gets the pattern as the bytes of a file name and reads them in the process's locale. It stops at a NUL,
/// which no file name holds, so what follows one is not judged. Does not block.
/// \return what the matcher answers: 0 for a match, 1 (FNM_NOMATCH) for none, anything else for a failure.
/// \source fnmatch(3) with FNM_PERIOD.
///
/// Threads: any thread.
[[nodiscard]] int matchGlob(QStringView pattern, const char* subject);

/// Puts \p matcher in place of the C library's, whose fnmatch refuses no pattern at all; null puts that one back.
/// \return the matcher that was in place.
///
/// Threads: any thread.
GlobMatcher replaceGlobMatcher(GlobMatcher matcher) noexcept;

} // namespace havrel::platform
