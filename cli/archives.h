// SPDX-License-Identifier: MIT
#pragma once

#include "components/archive_file.h"
#include "components/capture_engine.h"
#include "diagnostics/exception.h"

namespace havrel::cli {

class Report;

// What the subcommands about archives have in common.

/// The path of an archive file that was given, absolute and plain. \throws WrongUsage when it names nothing.
///
/// Threads: any thread.
[[nodiscard]] QByteArray archivePath(const QByteArray& given);

/// The sentence of a failure with the engine's own words behind it, in one line.
///
/// Threads: any thread.
[[nodiscard]] QString archiveFailureText(const HVException& exception);

/// The same of a failure that somebody else has been told of.
///
/// Threads: any thread.
[[nodiscard]] QString failureText(const QString& reason, const QString& words);

/// Does \p work, and tells \p report about \p archive when it raises.
void guarded(Report& report, const QByteArray& archive, const std::function<void()>& work);

/// The capture that \p given names by the first digits of its name, at least four; without any, the newest.
///
/// \throws HVException "Archive" when there is none, or several begin like that.
///
/// Threads: any thread.
[[nodiscard]] CaptureRecord chosenCapture(const QList<CaptureRecord>& captures, const std::optional<QByteArray>& given);

/// When it was, for people: in their time zone, to the minute; "never" for a null date.
///
/// Threads: any thread.
[[nodiscard]] QByteArray shownDate(const QDateTime& date);

/// When it was, as JSON: text in UTC, or null.
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonDate(const QDateTime& date);

/// Paths as a JSON list; bytes that are not UTF-8 are kept as everywhere (json_output.h).
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonPaths(const QByteArrayList& paths);

} // namespace havrel::cli
