// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QStringList>

namespace havrel::cli {

class Report;

/// The canonical lines of patterns as they can be stored on an item. What is no such pattern is told to \p report, with
/// the pattern's own message, and left out.
///
/// Threads: any thread.
[[nodiscard]] QStringList storablePatterns(const QByteArrayList& lines, Report& report);

/// The same for the lines of a file in UTF-8, "-" for standard input; empty lines are skipped.
///
/// Threads: any thread.
[[nodiscard]] QStringList storablePatternsOfFile(const QByteArray& file, Report& report);

} // namespace havrel::cli
