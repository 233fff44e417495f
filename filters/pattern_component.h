// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_options.h"
#include "filters/validity.h"

namespace havrel {

/// Errors of the pattern language.
namespace filter_error {
inline constexpr QLatin1StringView kDomain{"FilterDef"};
inline constexpr QLatin1StringView kInternalDomain{"Internal"};
inline constexpr qint64 kCode = 1; ///< the one code of both domains
} // namespace filter_error

/// An error of \p domain with a failure reason and a description for people.
[[nodiscard]] Error filterError(QLatin1StringView domain, QLatin1StringView reason, const QString& description);

/// Whether \p component is well-formed for \p type, as the C library and ICU judge it. What follows a NUL in a glob is
/// not judged, because no file name holds one.
/// \return else an error of the domain "FilterDef", which for both types gives "Invalid glob pattern" as its reason;
///         for a type that is none, one of the domain "Internal".
///
/// Threads: any thread.
[[nodiscard]] Validity validatePatternComponent(const QString& component, PatternType type);

} // namespace havrel
