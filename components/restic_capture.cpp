// SPDX-License-Identifier: MIT
#include "components/restic_capture.h"

#include "components/engine_fault.h"
#include "components/item_names.h"
#include "components/link_targets.h"
#include "components/restic_messages.h"
#include "components/restic_texts.h"
#include "foundation/error.h"
#include "platform/file_names.h"
#include "platform/items.h"

#include <cerrno>
#include <utility>

namespace havrel::restic {
namespace {

using platform::Proceed;

constexpr int kIncomplete = 3; // exit status: some items could not be read. \source restic's manual, "backup"

bool isLost(const QByteArray& target)
{
    return !survivesAsText(target);
}

/// Each path with a NUL behind it, which no name can hold.
QByteArray rawList(const QByteArrayList& items)
{
    QByteArray list;
    for (const QByteArray& each : items)
        list += each + '\0';
    return list;
}

} // namespace

Capture::Capture(const Program& program,
                 const EngineProgressBlock& progress,
                 std::function<QString(const QByteArrayList& items)> parentOf)
    : m_program(program)
    , m_progress(progress)
    , m_parentOf(std::move(parentOf))
{
}

CaptureSummary Capture::run(const QByteArrayList& items)
{
    const QByteArrayList present = withoutCovered(itemsThatAreThere(items));
    if (present.isEmpty())
        raiseFault(EngineFault::NothingToCapture, {}, m_program.place());
    const Outcome outcome = m_program.run({.arguments = argumentsFor(present),
                                           .input = rawList(present),
                                           .output = [this](const QByteArray& line) { return takeOutput(line); },
                                           .errors = [this](const QByteArray& line) { return takeError(line); },
                                           .pulse = [this] { return tellProgress(); }});
    if (m_stopped && !m_summary)
        raiseFault(EngineFault::Stopped, outcome.words, m_program.place());
    if (!m_summary || (outcome.status != 0 && outcome.status != kIncomplete))
        m_program.raise(outcome);
    m_summary->problems = m_problems;
    return *m_summary;
}

QByteArrayList Capture::argumentsFor(const QByteArrayList& present) const
{
    QByteArrayList arguments{"backup", "--json", "--files-from-raw", "-"};
    for (const QByteArray& each : tagsOf(present, linksAtOrBelow(present, isLost)))
        arguments += {"--tag", each};
    if (const QString parent = m_parentOf(present); !parent.isEmpty())
        arguments += {"--parent", parent.toLatin1()};
    return arguments;
}

QByteArrayList Capture::itemsThatAreThere(const QByteArrayList& items)
{
    QByteArrayList present;
    for (const QByteArray& each : items) {
        const int error = platform::findName(each);
        if (error == 0)
            present.append(each);
        else
            addProblem({platform::textOfFileName(each),
                        error == ENOENT ? QStringLiteral("it is not there") : systemErrorText(error)});
    }
    return present;
}

Proceed Capture::takeOutput(const QByteArray& line)
{
    const CaptureMessage message = captureMessageOf(line);
    if (message.summary)
        m_summary = message.summary;
    if (message.progress)
        m_latest = *message.progress;
    return message.progress ? tellProgress() : Proceed::Yes;
}

Proceed Capture::tellProgress()
{
    if (m_progress && m_progress(m_latest) == Proceed::No)
        m_stopped = true;
    return m_stopped ? Proceed::No : Proceed::Yes;
}

Proceed Capture::takeError(const QByteArray& line)
{
    if (const std::optional<EngineProblem> problem = problemOf(line))
        addProblem(*problem);
    return Proceed::Yes;
}

/// The engine tells of an item twice: while it looks how much there is, and when it reads it.
void Capture::addProblem(const EngineProblem& problem)
{
    if (m_withProblem.contains(problem.item))
        return;
    m_withProblem.insert(problem.item);
    m_problems.append(problem);
}

} // namespace havrel::restic
