// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <limits>
#include <optional>

namespace havrel {

/// The kind of the pattern components. A definition may carry other values, which no validation accepts.
enum class PatternType : qint32 { Glob = 0, RegularExpression = 1 };

/// The depth that means "however deep".
inline constexpr quint64 kIndefiniteDepth = std::numeric_limits<quint64>::max();

/// The options at the end of a pattern line: how many levels below the matched item it reaches, and what it is made of.
struct PatternOptions
{
    quint64 depth = 0;
    PatternType type = PatternType::Glob;

    friend bool operator==(const PatternOptions&, const PatternOptions&) = default;
};

/// Reads "3:re" and the like: a depth (nothing for 0, "+" for kIndefiniteDepth, or ASCII digits, which saturate at
/// 2^63 - 1), then any number of types, each after a ":", of which the last holds: "re" or "regex", "glob" or "shell".
/// \return nothing when \p text is anything else.
///
/// Threads: any thread.
[[nodiscard]] std::optional<PatternOptions> readPatternOptions(QStringView text);

/// The text of \p options, the type always included: "+:re", ":glob".
///
/// Threads: any thread.
[[nodiscard]] QString textOf(const PatternOptions& options);

/// "re" for regular expressions, "glob" for anything else.
///
/// Threads: any thread.
[[nodiscard]] QString typeSuffixOf(PatternType type);

} // namespace havrel
