// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

struct iovec;

namespace havrel::platform {

/// How urgent a console message is; the numbers are those of the system log.
///
/// \source syslog(3)
enum class JournalPriority : int {
    Error = 3,
    Notice = 5,
    Info = 6,
    Debug = 7,
};

/// Whether the system journal takes messages here. One system call.
///
/// Threads: any thread.
[[nodiscard]] bool journalExists();

/// sd_journal_sendv(3): takes the fields of one message ("NAME=value" each); answers 0, or an errno value below zero.
using JournalSend = std::function<int(const iovec* fields, int count)>;

/// What takes messages; the system journal until a test replaces it. The system's answers -ENOENT where there is no
/// journal.
///
/// Threads: any thread, as long as nobody replaces it.
[[nodiscard]] JournalSend& journalSend();
[[nodiscard]] JournalSend systemJournalSend();

/// Hands \p message to the system journal, under the program's name. File-name bytes in the text travel as those bytes.
/// Does not wait for the journal.
///
/// \return 0 or an errno value (ENOENT where there is no journal).
///
/// \source sd_journal_sendv(3), systemd.journal-fields(7)
///
/// Threads: any thread.
[[nodiscard]] int sendToJournal(JournalPriority priority, const QString& message);

/// Writes \p message and a newline to standard error; what that does not take is lost.
///
/// Threads: any thread.
void writeToStandardError(const QString& message);

/// Writes a console message: to the system journal, else to standard error.
///
/// Threads: any thread.
void writeToConsole(JournalPriority priority, const QString& message);

} // namespace havrel::platform
