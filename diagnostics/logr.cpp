// SPDX-License-Identifier: MIT
#include "diagnostics/logr.h"

#include "diagnostics/logr_state.h"
#include "diagnostics/non_lossy_ascii.h"
#include "platform/journal.h"

namespace havrel {
namespace {

/// The wall of the writer: a logger that fails cannot log that.
template<class Body>
void atWriterWall(const Body& body)
{
    try {
        body();
    } catch (...) {
        platform::writeToConsole(platform::JournalPriority::Error,
                                 QStringLiteral("cannot write log: ") + Exception::fromCurrent().description());
    }
}

} // namespace

Logr::State::State(Surroundings given)
    : surroundings(std::move(given))
    , dateFormatter(makeLogDateFormatter())
    , loggerQueue(std::make_unique<SerialQueue>(QStringLiteral("log.writer")))
{
}

LogDate Logr::State::now() const
{
    return surroundings.now ? surroundings.now() : LogDate(std::chrono::system_clock::now());
}

std::optional<platform::SymbolLocation> Logr::State::symbolAt(std::uintptr_t address) const
{
    return surroundings.symbolAt ? surroundings.symbolAt(address) : platform::symbolAt(address);
}

Logr::Logr()
    : Logr(Surroundings{})
{
}

Logr::Logr(Surroundings surroundings)
    : m_state(std::make_unique<State>(std::move(surroundings)))
{
}

Logr::~Logr()
{
    m_state->loggerQueue.reset(); // its last blocks need the rest of the state
}

SerialQueue& Logr::loggerQueue()
{
    return *m_state->loggerQueue;
}

LogLineIdentPtr
Logr::writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message)
{
    const LogLineIdentPtr& parent = inLine ? inLine : rootLogLine();
    parent->noteClassification(classification);
    LogLineIdentPtr identity = parent->next();
    loggerQueue().async(QueuedLine::Request{.logger = *this,
                                            .message = message,
                                            .identity = identity,
                                            .date = m_state->now(),
                                            .classification = classification});
    return identity;
}

LogLineIdentPtr Logr::writeFormatted(LogClassification classification,
                                     const LogLineIdentPtr& inLine,
                                     fmt::string_view format,
                                     fmt::format_args arguments)
{
    return writeLine(classification, inLine, LogMessage::formatted(format, arguments));
}

void Logr::writeQueued(const QueuedLine& queued)
{
    atWriterWall([this, &queued] { judge(queued); });
}

void Logr::judge(const QueuedLine& queued)
{
    const QString line = formatMessage({.message = queued.message.text(),
                                        .date = queued.date,
                                        .inLine = queued.identity,
                                        .classification = queued.classification,
                                        .classString = nameOfClassification(queued.classification)});
    switch (m_state->limiter.judge(line, queued.date)) {
    case RateLimiter::Verdict::Write:
        logMessage(line);
        break;
    case RateLimiter::Verdict::Release:
        unspoolTailAt(queued.date);
        break;
    case RateLimiter::Verdict::Hold:
        break;
    }
}

QString Logr::formatMessage(const LogLine& line)
{
    QString text = m_state->dateFormatter.stringFromDate(line.date);
    text += u' ' + line.classString + u' ' + line.message + QStringLiteral(" [");
    if (line.inLine)
        line.inLine->appendIdentifierToString(text);
    return text += u']';
}

void Logr::unspoolTailAt(LogDate date)
{
    const std::optional<RateLimiter::Held> held = m_state->limiter.unspool(date);
    if (!held)
        return;
    if (held->discarded > 0) {
        const LogLineIdentPtr& root = rootLogLine();
        root->noteClassification(LogClassification::Warning);
        logMessage(formatMessage(
            {.message = QStringLiteral("Logging rate was too fast; %1 lines discarded").arg(held->discarded),
             .date = date,
             .inLine = root->next(),
             .classification = LogClassification::Warning,
             .classString = nameOfClassification(LogClassification::Warning)}));
    }
    for (const QString& line : held->lines)
        logMessage(line);
}

void Logr::logMessage(const QString& line)
{
    atWriterWall([this, &line] { logCString(nonLossyASCII(line)); });
}

void Logr::logCString(const QByteArray&) {}

void Logr::flush()
{
    loggerQueue().sync([this] { atWriterWall([this] { unspoolTailAt(m_state->now()); }); });
}

void Logr::close()
{
    Logr::flush();
}

void Logr::openUsingLaunchServices(const QVariant&) {}

} // namespace havrel
