// SPDX-License-Identifier: MIT
#pragma once

#include "platform/proceed.h"

#include <QByteArray>
#include <QByteArrayList>

#include <chrono>
#include <functional>
#include <optional>

namespace havrel::platform {

/// Which of a program's streams something came from.
enum class OutputStream { Output, Errors };

/// A program that is run for the lines that it writes.
struct ProgramCall
{
    QByteArray program; ///< the path of an executable file
    QByteArrayList arguments = {};
    QByteArray input = {};                          ///< all that its standard input holds
    std::optional<QByteArrayList> environment = {}; ///< "NAME=value"; none: this process's
    /// Asked some times a second while the program writes nothing; empty: nobody is.
    std::function<Proceed()> pulse = {};
    /// How long a program that was interrupted may take to end before it is killed.
    std::chrono::milliseconds patience{10'000};
};

/// How a run came to its end.
struct ProgramEnd
{
    int errnoValue = 0; ///< of what kept the program from being started; 0 when it ran
    int status = -1;    ///< its exit status, or 128 + the number of the signal that ended it
};

/// Runs a program and calls \p line, on this thread, for each line of either stream as it comes, without its newline;
/// lines of one stream keep their order. The last line need not end. Blocks until the program has ended and everybody
/// who inherited its streams has closed them. An answer of Proceed::No interrupts the program (SIGINT, once); what it
/// still writes arrives, until the call's patience is at its end: then it is killed (SIGKILL), and who has inherited
/// its streams is not waited for.
///
/// \source poll(2), memfd_create(2)
///
/// Threads: any thread.
ProgramEnd runForLines(const ProgramCall& call,
                       const std::function<Proceed(OutputStream stream, const QByteArray& line)>& line);

} // namespace havrel::platform
