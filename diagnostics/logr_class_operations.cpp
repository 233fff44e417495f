// SPDX-License-Identifier: MIT
// What the class operations of the facade share, and those that write lines through the shared logger.
#include "diagnostics/logr.h"
#include "diagnostics/placeholder_lines.h"
#include "diagnostics/process_lines.h"
#include "diagnostics/root_log_line.h"
#include "diagnostics/shared_logger.h"
#include "foundation/error.h"
#include "platform/journal.h"
#include "platform/local_time.h"
#include "platform/own_process.h"

#include <algorithm>
#include <array>

namespace havrel {
namespace {

constexpr std::array<QLatin1StringView, 10> kTags{
    QLatin1StringView("       "),
    QLatin1StringView("-------"),
    QLatin1StringView("Curious"),
    QLatin1StringView("Caution"),
    QLatin1StringView("Warning"),
    QLatin1StringView("Failure"),
    QLatin1StringView("Minutia"),
    QLatin1StringView("Details"),
    QLatin1StringView("Subrosa"),
    QLatin1StringView("#debug#"),
};

/// The wall between the shared logger and whoever logs: what goes wrong inside stays inside.
template<class Body>
LogLineIdentPtr throughSharedLogger(const Body& body)
{
    try {
        const LogrPtr logger = Logr::shared();
        return logger ? body(*logger) : nullptr;
    } catch (...) {
        platform::writeToConsole(platform::JournalPriority::Error,
                                 QStringLiteral("cannot log: ") + Exception::fromCurrent().description());
        return nullptr;
    }
}

PlaceholderLines& placeholderLines()
{
    // Never destroyed: lines may be logged until the very end of the process.
    static PlaceholderLines& s_lines = *std::make_unique<PlaceholderLines>().release();
    return s_lines;
}

LogLineIdentPtr rootLineOfThisProcess()
{
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    return rootLogLineFor(platform::localTimeAt(now.time_since_epoch().count()),
                          static_cast<std::uint64_t>(platform::processID()));
}

QString messageOrDescription(const QString& message, const std::optional<Error>& error)
{
    if (!message.isNull())
        return message;
    return error ? error->localizedDescription() : QStringLiteral("Unexpected error");
}

} // namespace

LogrPtr Logr::shared()
{
    return SharedLogger::ofProcess().get();
}

void Logr::setSharedLogger(const LogrPtr& logger)
{
    SharedLogger::ofProcess().set(logger);
}

void Logr::closeSharedLogger()
{
    SharedLogger::ofProcess().close();
}

LogDateFormatter Logr::makeLogDateFormatter()
{
    return {};
}

const LogLineIdentPtr& Logr::rootLogLine()
{
    // Never destroyed, like everything that late lines need.
    static const LogLineIdentPtr& s_root = *std::make_unique<LogLineIdentPtr>(rootLineOfThisProcess()).release();
    return s_root;
}

LogLineIdentPtr Logr::logLineForKey(const QString& key)
{
    return placeholderLines().line(key);
}

void Logr::setLogLine(const LogLineIdentPtr& line, const QString& key)
{
    placeholderLines().setLine(line, key);
}

QString Logr::nameOfClassification(LogClassification classification)
{
    const auto index = static_cast<std::size_t>(classification);
    return index < kTags.size() ? kTags.at(index) : kTags.front();
}

LogClassification Logr::classificationFromName(const QString& name)
{
    const auto found = std::find(kTags.begin(), kTags.end(), name);
    return found == kTags.end() ? LogClassification::Preferred
                                : static_cast<LogClassification>(std::distance(kTags.begin(), found));
}

const UserInfoLogClassifications& Logr::errorInfoLogClassifications()
{
    static const UserInfoLogClassifications s_map{
        {error_key::kLocalizedDescription, LogClassification::Debug},
        {error_key::kLocalizedRecoveryOptions, LogClassification::Debug},
        {error_key::kLocalizedRecoverySuggestion, LogClassification::Debug},
        {error_key::kRecoveryAttempter, LogClassification::Debug},
        {error_key::kUnderlyingError, LogClassification::Debug},
    };
    return s_map;
}

LogLineIdentPtr Logr::log(LogClassification classification, const QString& message)
{
    return log(classification, nullptr, message);
}

LogLineIdentPtr Logr::log(LogClassification classification, const LogLineIdentPtr& inLine, const QString& message)
{
    return throughSharedLogger([&](Logr& logger) { return logger.writeLine(classification, inLine, message); });
}

LogLineIdentPtr Logr::logFormatted(LogClassification classification,
                                   const LogLineIdentPtr& inLine,
                                   fmt::string_view format,
                                   fmt::format_args arguments)
{
    return throughSharedLogger(
        [&](Logr& logger) { return logger.writeFormatted(classification, inLine, format, arguments); });
}

LogLineIdentPtr Logr::debugMessage(const QString& message)
{
    return log(LogClassification::Debug, message);
}

LogLineIdentPtr
Logr::logKey(LogClassification classification, const LogLineIdentPtr& inLine, const QString& key, const QVariant& value)
{
    return throughSharedLogger([&](Logr& logger) { return logger.writeKey(classification, inLine, key, value); });
}

LogLineIdentPtr
Logr::logException(LogClassification classification, const LogLineIdentPtr& inLine, const Exception& exception)
{
    return throughSharedLogger([&](Logr& logger) {
        return logger.writeException(classification, HVException::userInfoLogClassifications(), inLine, exception);
    });
}

LogLineIdentPtr Logr::logException(LogClassification classification, const Exception& exception)
{
    return logException(classification, nullptr, exception);
}

LogLineIdentPtr Logr::logException(const Exception& exception)
{
    return logException(LogClassification::Preferred, nullptr, exception);
}

LogLineIdentPtr Logr::logNewException(const Exception& exception)
{
    return logNewException(LogClassification::Preferred, exception);
}

LogLineIdentPtr Logr::logNewException(LogClassification classification, const Exception& exception)
{
    return throughSharedLogger([&](Logr& logger) {
        return logger.isNewException(exception) ? logException(classification, exception) : nullptr;
    });
}

LogLineIdentPtr Logr::logExceptionDetails(LogClassification classification,
                                          const LogLineIdentPtr& inLine,
                                          const QString& message,
                                          const std::optional<Exception>& exception)
{
    auto line = log(classification, inLine, message);
    if (line && exception)
        logException(LogClassification::Details, line, *exception);
    return line;
}

LogLineIdentPtr Logr::logError(LogClassification classification, const LogLineIdentPtr& inLine, const Error& error)
{
    return throughSharedLogger(
        [&](Logr& logger) { return logger.writeError(classification, errorInfoLogClassifications(), inLine, error); });
}

LogLineIdentPtr
Logr::logError(LogClassification classification, const QString& message, const std::optional<Error>& error)
{
    auto line = log(classification, messageOrDescription(message, error));
    if (line)
        logException(
            LogClassification::Details,
            line,
            HVException::exceptionWithName(exception_name::kIO, QStringLiteral("general problem")).setError(error));
    return line;
}

LogLineIdentPtr Logr::logDebugError(const std::optional<Error>& error)
{
    return logError(LogClassification::Debug, QString(), error);
}

LogLineIdentPtr Logr::logPlaceholder(LogClassification classification, const QString& text, const QString& key)
{
    return logPlaceholder(classification, nullptr, text, key);
}

LogLineIdentPtr Logr::logPlaceholder(LogClassification classification,
                                     const LogLineIdentPtr& inLine,
                                     const QString& text,
                                     const QString& key)
{
    return logPlaceholder(
        LoggedOccurrence{.classification = classification, .inLine = inLine, .placeholder = text, .key = key});
}

LogLineIdentPtr Logr::logPlaceholder(const LoggedOccurrence& occurrence)
{
    return throughSharedLogger([&](Logr& logger) { return placeholderLines().log(logger, occurrence); });
}

LogLineIdentPtr Logr::logStartProcess(const QString& name)
{
    return throughSharedLogger([&](Logr& logger) { return writeStartProcess(logger, name, ProcessFacts::current()); });
}

LogLineIdentPtr Logr::logStopProcess(const QString& name, int exitStatus)
{
    return throughSharedLogger([&](Logr& logger) { return writeStopProcess(logger, name, exitStatus); });
}

void logStackTrace(const QString& message)
{
    try {
        Exception(QStringLiteral("NSGenericException"), QStringLiteral("stack trace: ") + message).raise();
    } catch (const Exception& exception) {
        Logr::logException(LogClassification::Debug, exception);
    }
}

} // namespace havrel
