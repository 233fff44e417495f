// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace havrel {

/// The lines of a file of patterns, without what ends them: U+000A to U+000D, U+0085, U+2028, U+2029, or a carriage
/// return with its line feed. What follows the last newline is a line too, be it empty.
///
/// Threads: any thread.
[[nodiscard]] QStringList linesOfPatternFile(const QString& text);

} // namespace havrel
