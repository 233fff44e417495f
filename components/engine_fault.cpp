// SPDX-License-Identifier: MIT
#include "components/engine_fault.h"

#include "components/archive_file.h"
#include "diagnostics/exception.h"
#include "platform/file_names.h"

#include <algorithm>
#include <array>
#include <csignal>

namespace havrel {
namespace {

struct FaultRow
{
    EngineFault fault;
    const char* word;
    const char* sentence;
};

constexpr std::array kFaults{
    FaultRow{EngineFault::ProgramMissing, "program-missing", "the program that keeps the archive is not installed"},
    FaultRow{EngineFault::WrongKey, "wrong-key", "the key does not open the archive"},
    FaultRow{EngineFault::KeyUnavailable, "key-unavailable", "the archive's key cannot be got"},
    FaultRow{EngineFault::Locked, "locked", "another program has locked the archive"},
    FaultRow{EngineFault::Full, "full", "there is no room left where the archive is kept"},
    FaultRow{EngineFault::Unreachable, "unreachable", "the place where the archive is kept cannot be reached"},
    FaultRow{EngineFault::NoRepository, "no-repository", "the archive is not at its place; is its disk connected?"},
    FaultRow{EngineFault::AlreadyThere, "already-there", "an archive is kept at that place already"},
    FaultRow{EngineFault::Denied, "denied", "this user may not use the place where the archive is kept"},
    FaultRow{EngineFault::NothingToCapture, "nothing-to-capture", "none of the items is there"},
    FaultRow{EngineFault::Stopped, "stopped", "the work was stopped"},
    FaultRow{EngineFault::Other, "other", "the program that keeps the archive has failed"},
};

/// What the engine says, the telling one first: a place that does not answer is also said to hold no repository.
struct PhraseRow
{
    const char* phrase;
    EngineFault fault;
};

/// \source restic 0.14 and the texts of the system's errors, tried; restic's manual for later versions
constexpr std::array kPhrases{
    PhraseRow{"wrong password", EngineFault::WrongKey},
    PhraseRow{"an empty password", EngineFault::KeyUnavailable},
    PhraseRow{"Resolving password failed", EngineFault::KeyUnavailable},
    PhraseRow{"repository is already locked", EngineFault::Locked},
    PhraseRow{"no space left on device", EngineFault::Full},
    PhraseRow{"disk quota exceeded", EngineFault::Full},
    PhraseRow{"config file already exists", EngineFault::AlreadyThere},
    PhraseRow{"config already exists", EngineFault::AlreadyThere},
    PhraseRow{"already initialized", EngineFault::AlreadyThere},
    PhraseRow{"onnection refused", EngineFault::Unreachable},
    PhraseRow{"no such host", EngineFault::Unreachable},
    PhraseRow{"Could not resolve hostname", EngineFault::Unreachable},
    PhraseRow{"is unreachable", EngineFault::Unreachable},
    PhraseRow{"No route to host", EngineFault::Unreachable},
    PhraseRow{"no route to host", EngineFault::Unreachable},
    PhraseRow{"imed out", EngineFault::Unreachable},
    PhraseRow{"i/o timeout", EngineFault::Unreachable},
    PhraseRow{"Host key verification failed", EngineFault::Unreachable},
    PhraseRow{"unable to start the sftp session", EngineFault::Unreachable},
    PhraseRow{"ermission denied", EngineFault::Denied},
    PhraseRow{"read-only file system", EngineFault::Denied},
    PhraseRow{"Access Denied", EngineFault::Denied},
    PhraseRow{"Is there a repository at the following location?", EngineFault::NoRepository},
    PhraseRow{"repository does not exist", EngineFault::NoRepository},
    PhraseRow{"all target directories/files do not exist", EngineFault::NothingToCapture},
    PhraseRow{"snapshot is empty", EngineFault::NothingToCapture},
};

const FaultRow& rowOf(EngineFault fault)
{
    return *std::find_if(kFaults.begin(), kFaults.end(), [fault](const FaultRow& row) { return row.fault == fault; });
}

} // namespace

EngineFault faultOfEngine(int status, const QByteArrayList& words)
{
    // Exit statuses of restic 0.17 and later. \source restic's manual, "Exit codes"
    constexpr int kSignalled = 128; // and the number of the signal. \source platform/program_lines.h
    constexpr std::array kStatuses{std::pair{10, EngineFault::NoRepository},
                                   std::pair{11, EngineFault::Locked},
                                   std::pair{12, EngineFault::WrongKey},
                                   std::pair{kSignalled + SIGHUP, EngineFault::Stopped},
                                   std::pair{kSignalled + SIGINT, EngineFault::Stopped},
                                   std::pair{kSignalled + SIGKILL, EngineFault::Stopped},
                                   std::pair{kSignalled + SIGTERM, EngineFault::Stopped}};
    for (const auto& [number, fault] : kStatuses)
        if (status == number)
            return fault;
    const QByteArray text = words.join('\n');
    for (const PhraseRow& row : kPhrases)
        if (text.contains(row.phrase))
            return row.fault;
    return EngineFault::Other;
}

QString sentenceOf(EngineFault fault)
{
    return QString::fromLatin1(rowOf(fault).sentence);
}

QString wordOf(EngineFault fault)
{
    return QString::fromLatin1(rowOf(fault).word);
}

void raiseFault(EngineFault fault, const QByteArrayList& words, const QByteArray& place)
{
    HVException exception = HVException::exceptionWithName(kArchiveException, sentenceOf(fault));
    exception.setStrPath(platform::textOfFileName(shownPlace(place)));
    exception.setDetail(wordOf(fault), QStringLiteral("Fault"));
    if (!words.isEmpty())
        exception.setDetail(platform::textOfFileName(words.join('\n')), detail_key::kErrDescription);
    exception.raise();
}

} // namespace havrel
