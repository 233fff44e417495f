// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_fault.h"
#include "filters/pattern_options.h"
#include "foundation/index_set.h"

#include <QStringList>

namespace havrel {

/// Whether a line may start at the root ("/x", "///x") instead of at the item that carries it.
enum class AbsolutePaths { Refused, Permitted };

/// What a pattern line says: `Library//*.tmp/3:glob` is the literal component "Library" and the pattern "*.tmp", a glob
/// that reaches three levels below what it matches.
///
/// Threads: const members any thread, others one at a time.
struct PatternLine
{
    QStringList components;     ///< literal names and patterns in order, without the options
    IndexSet patternComponents; ///< which of the components are patterns
    PatternOptions options;
    bool absolute = false; ///< the line starts with one or three slashes

    friend bool operator==(const PatternLine&, const PatternLine&) = default;
};

/// A line as far as it could be read.
struct PatternLineReading
{
    PatternLine line;
    PatternFault fault = PatternFault::None;
    /// The slashes are in order and the options were looked at; else line.options say nothing.
    bool reachedOptions = false;
};

/// Reads one line of the pattern language.
///
/// "/" separates components; "//" switches between literal names and patterns. A line that starts with "//" or "///"
/// starts with a pattern, one that starts with "/" or "///" is absolute. A last component that is a pattern and reads
/// as options holds the options. Whether the patterns are well-formed for their type is not looked at. No character but
/// "/" is special: blanks count, as do NULs and the surrogates that stand for bytes outside UTF-8.
/// Takes time linear in the length.
///
/// Threads: any thread.
[[nodiscard]] PatternLineReading readPatternLine(QStringView text, AbsolutePaths absolutePaths);

/// The usual text of \p line, with options only when it has a depth or is no glob.
///
/// Not every such text reads back as the same line: where there are no options to add and the last pattern looks like
/// options itself (`//5/0`), it is taken for them. Other programs store and read this format, so it stays as it is.
///
/// Threads: any thread.
[[nodiscard]] QString canonicalTextOf(const PatternLine& line);

} // namespace havrel
