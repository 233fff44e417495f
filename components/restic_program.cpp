// SPDX-License-Identifier: MIT
#include "components/restic_program.h"

#include "components/archive_file.h"
#include "components/archive_key.h"
#include "components/engine_fault.h"
#include "components/restic_messages.h"
#include "foundation/error.h"
#include "platform/program_lines.h"
#include "platform/programs.h"

#include <unistd.h>

namespace havrel::restic {
namespace {

constexpr qsizetype kMostWords = 100; // lines of standard error that are kept

/// This process's environment, less what would change which repository is used and how.
QByteArrayList environmentOfProgram()
{
    QByteArrayList variables{"RESTIC_PROGRESS_FPS=5"};
    for (char** each = environ; *each != nullptr; ++each)
        if (!QByteArrayView(*each).startsWith("RESTIC_"))
            variables.append(*each);
    return variables;
}

platform::Proceed told(const Program::LineBlock& block, const QByteArray& line)
{
    return block ? block(line) : platform::Proceed::Yes;
}

QByteArrayList refusalOf(const QString& command)
{
    return {"the archive file wants this to be run for its key: " + command.toUtf8(),
            "which you have not given here; if it is yours, make the archive here once more, with that --key-command"};
}

} // namespace

Program::Program(const ArchiveFile& archive)
    : m_place(archive.repository)
    , m_common{"--repo", archive.repository}
{
    if (archive.key.command.isEmpty())
        m_common += {"--password-file", keyFileOf(archive.identifier)};
    else if (isAllowedKeyCommand(archive.identifier, archive.key.command))
        m_common += {"--password-command", archive.key.command.toUtf8()};
    else
        m_refusedCommand = archive.key.command;
}

Outcome Program::run(const Call& call) const
{
    if (!m_refusedCommand.isEmpty())
        raiseFault(EngineFault::KeyUnavailable, refusalOf(m_refusedCommand), m_place);
    const QByteArray program = platform::programOfName("restic");
    if (program.isEmpty())
        raiseFault(EngineFault::ProgramMissing, {"restic: not found in PATH"}, m_place);
    Outcome outcome;
    const auto take = [&](platform::OutputStream stream, const QByteArray& line) {
        if (stream == platform::OutputStream::Output)
            return told(call.output, line);
        if (outcome.words.size() == kMostWords)
            outcome.words.removeFirst();
        if (!line.isEmpty())
            outcome.words.append(wordsOf(line));
        return told(call.errors, line);
    };
    const platform::ProgramEnd end = platform::runForLines({.program = program,
                                                            .arguments = m_common + call.arguments,
                                                            .input = call.input,
                                                            .environment = environmentOfProgram(),
                                                            .pulse = call.pulse},
                                                           take);
    if (end.errnoValue != 0)
        raiseFault(EngineFault::Other, {program + ": " + systemErrorText(end.errnoValue).toLatin1()}, m_place);
    outcome.status = end.status;
    return outcome;
}

void Program::runWell(const Call& call) const
{
    if (const Outcome outcome = run(call); outcome.status != 0)
        raise(outcome);
}

QByteArray Program::outputOf(const QByteArrayList& arguments) const
{
    QByteArray output;
    runWell({.arguments = arguments, .output = [&output](const QByteArray& line) {
                 output += line + '\n';
                 return platform::Proceed::Yes;
             }});
    return output;
}

void Program::raise(const Outcome& outcome) const
{
    raiseFault(faultOfEngine(outcome.status, outcome.words), outcome.words, m_place);
}

} // namespace havrel::restic
