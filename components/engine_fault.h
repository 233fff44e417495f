// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QString>

namespace havrel {

/// Why an engine could not do what it was asked for.
enum class EngineFault {
    ProgramMissing,   ///< the engine's program is not installed
    WrongKey,         ///< the key does not open the repository
    KeyUnavailable,   ///< the key cannot be got: no key file, or the command fails
    Locked,           ///< another program works on the repository alone
    Full,             ///< no room left where the repository is
    Unreachable,      ///< the network or the other computer does not answer
    NoRepository,     ///< nothing is there
    AlreadyThere,     ///< a repository is there already
    Denied,           ///< this user may not read or write there
    NothingToCapture, ///< none of the items is there
    Stopped,          ///< the caller wanted no more, or somebody has ended the engine's program by a signal
    Other,
};

/// What kind of failure an engine's end was.
///
/// \param status the program's exit status
/// \param words  the lines that it has written to its standard error
///
/// Threads: any thread.
[[nodiscard]] EngineFault faultOfEngine(int status, const QByteArrayList& words);

/// A sentence that says so, without its first capital and last point.
///
/// Threads: any thread.
[[nodiscard]] QString sentenceOf(EngineFault fault);

/// One word for it: "locked". \source the names of EngineFault
///
/// Threads: any thread.
[[nodiscard]] QString wordOf(EngineFault fault);

/// Raises an HVException "Archive" with the sentence; the engine's own \p words are its detail "ErrDescription", the
/// word of the fault is its detail "Fault", and \p place, without a password, its path.
///
/// Threads: any thread.
[[noreturn]] void raiseFault(EngineFault fault, const QByteArrayList& words, const QByteArray& place);

} // namespace havrel
