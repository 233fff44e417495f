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

struct PatternsOfFile
{
    QStringList canonicals;
    int error = 0; ///< errno value of what the file could not be read for; 0: all was read
};

/// The same for the lines of a file in UTF-8, "-" for standard input; empty lines are skipped. The file's own failure
/// is not told to \p report.
///
/// Threads: any thread.
[[nodiscard]] PatternsOfFile storablePatternsOfFile(const QByteArray& file, Report& report);

} // namespace havrel::cli
