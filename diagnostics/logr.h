// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception.h"
#include "diagnostics/log_classification.h"
#include "diagnostics/log_date.h"
#include "diagnostics/log_date_formatter.h"
#include "diagnostics/log_line_ident.h"
#include "diagnostics/log_message.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace havrel {

class Error;
class Logr;
class SerialQueue;
using LogrPtr = std::shared_ptr<Logr>;

/// The format of a log call, checked by the compiler: that of {fmt}.
template<class... Arguments>
using LogFormat = fmt::format_string<Arguments...>;

/// What formatMessage makes a line of.
struct LogLine
{
    QString message;
    LogDate date;
    LogLineIdentPtr inLine; ///< the line's own identity
    LogClassification classification = LogClassification::Plain;
    QString classString; ///< the tag
};

/// What writeData shows.
struct LoggedData
{
    LogClassification classification = LogClassification::Plain;
    LogLineIdentPtr inLine = nullptr; ///< null: the root log line
    QString key;
    QByteArray data;
    std::size_t tail = 0; ///< bytes to show at either end of long data; 0: all of it
};

/// What logPlaceholder groups.
struct LoggedOccurrence
{
    LogClassification classification = LogClassification::Plain;
    LogLineIdentPtr inLine = nullptr; ///< null: the root log line
    QString placeholder;              ///< text of the heading
    QString key;                      ///< under which the heading is known
    std::optional<Exception> exception = std::nullopt;
};

/// The logging facade. Its class operations (log...) forward to the one shared logger, whose class decides where lines
/// go; the operations of a logger itself are called write...
///
/// Each line has a classification, the moment of the call and an identity; further lines are nested under it by passing
/// that identity on. A null in-line means the root log line. Each operation answers the identity of the first line it
/// wrote; null from a logger that keeps no lines, and then nothing is written under that line.
///
/// The class operations never raise into their caller, and nobody waits for output: lines are formatted and written on
/// the logger's own serial queue, "log.writer".
///
/// Threads: any thread.
class Logr
{
public:
    // ---- the shared logger

    /// The shared logger, chosen on first use: a fallback (by class name, `NSLogLogr` then `NullLogr`; the other way
    /// round when the effective user is root), replaced by a `FileLogr` if one can be made. Null only for a call from
    /// inside the making of the fallback itself.
    /// \throws Exception when no fallback can be made.
    /// \selector +shared
    [[nodiscard]] static LogrPtr shared();
    /// Closes the current shared logger and installs \p logger. \selector +setSharedLogger:
    static void setSharedLogger(const LogrPtr& logger);
    /// Closes the current shared logger and forgets it; the next use chooses again. To be called at the end of main,
    /// because lines may be held back. \selector +closeSharedLogger
    static void closeSharedLogger();

    /// \selector +makeLogDateFormatter
    [[nodiscard]] static LogDateFormatter makeLogDateFormatter();
    /// The line of this process, under which everything else stands. \selector +rootLogLine
    [[nodiscard]] static const LogLineIdentPtr& rootLogLine();
    /// The line stored under \p key; null when there is none. \selector +logLineForKey:
    [[nodiscard]] static LogLineIdentPtr logLineForKey(const QString& key);
    /// Stores \p line under \p key for the life of the process; null removes the key. \selector +setLogLine:forKey:
    static void setLogLine(const LogLineIdentPtr& line, const QString& key);

    /// The tag of a classification, seven characters; blanks for one out of range. \selector +nameOfClassification:
    [[nodiscard]] static QString nameOfClassification(LogClassification classification);
    /// The classification whose tag is exactly \p name; Preferred when there is none.
    /// \selector +classificationFromName:
    [[nodiscard]] static LogClassification classificationFromName(const QString& name);
    /// Classifications of the user-info keys of errors. \source the keys of foundation/error.h, all at Debug
    [[nodiscard]] static const UserInfoLogClassifications& errorInfoLogClassifications();

    // ---- messages

    /// \selector +log:message:
    static LogLineIdentPtr log(LogClassification classification, const QString& message);
    /// \selector +log:inLine:message:
    static LogLineIdentPtr log(LogClassification classification, const LogLineIdentPtr& inLine, const QString& message);
    /// \selector +log:format:
    template<class... Arguments>
    static LogLineIdentPtr
    logFormat(LogClassification classification, LogFormat<Arguments...> format, Arguments&&... arguments)
    {
        return logFormatted(classification, nullptr, format, fmt::make_format_args(arguments...));
    }
    /// \selector +log:inLine:format:
    template<class... Arguments>
    static LogLineIdentPtr logFormat(LogClassification classification,
                                     const LogLineIdentPtr& inLine,
                                     LogFormat<Arguments...> format,
                                     Arguments&&... arguments)
    {
        return logFormatted(classification, inLine, format, fmt::make_format_args(arguments...));
    }
    /// log at Debug. \selector +debugMessage:
    static LogLineIdentPtr debugMessage(const QString& message);
    /// logFormat at Debug. \selector +debugFormat:
    template<class... Arguments>
    static LogLineIdentPtr debugFormat(LogFormat<Arguments...> format, Arguments&&... arguments)
    {
        return logFormatted(LogClassification::Debug, nullptr, format, fmt::make_format_args(arguments...));
    }

    // ---- values

    /// "key: value"; a dictionary or list as "key:" with its entries under it, list elements by index: "[0]".
    /// \selector +log:inLine:key:value:
    static LogLineIdentPtr
    logKey(LogClassification classification, const LogLineIdentPtr& inLine, const QString& key, const QVariant& value);

    // ---- exceptions and errors

    /// The exception with its facts, causes and, once in six hours, its stack; Preferred means the exception's own
    /// classification. \selector +log:inLine:exception:
    static LogLineIdentPtr
    logException(LogClassification classification, const LogLineIdentPtr& inLine, const Exception& exception);
    /// \selector +log:exception:
    static LogLineIdentPtr logException(LogClassification classification, const Exception& exception);
    /// At the exception's own classification. \selector +logException:
    static LogLineIdentPtr logException(const Exception& exception);
    /// logException, but nothing (and null) for the very exception that was logged last, so that each of several nested
    /// handlers may log what passes through it. \selector +logNewException:
    static LogLineIdentPtr logNewException(const Exception& exception);
    /// \selector +log:newException:
    static LogLineIdentPtr logNewException(LogClassification classification, const Exception& exception);
    /// The message, and the exception, if any, under it at Details. \selector +log:inLine:message:exceptionDetails:
    static LogLineIdentPtr logExceptionDetails(LogClassification classification,
                                               const LogLineIdentPtr& inLine,
                                               const QString& message,
                                               const std::optional<Exception>& exception);
    /// The error's description, its reason and its user-info. \selector +log:inLine:error:
    static LogLineIdentPtr
    logError(LogClassification classification, const LogLineIdentPtr& inLine, const Error& error);
    /// The message (null: the error's description; without both "Unexpected error"), and under it at Details the error
    /// wrapped in an exception. \selector +log:message:error:
    static LogLineIdentPtr
    logError(LogClassification classification, const QString& message, const std::optional<Error>& error);
    /// logError at Debug without a message. \selector +logDebugError:
    static LogLineIdentPtr logDebugError(const std::optional<Error>& error);

    // ---- headings that appear once however often a condition recurs

    /// The line stored under \p key; if there is none, \p text is logged and its line stored there.
    /// \selector +log:placeholder:forKey:
    static LogLineIdentPtr logPlaceholder(LogClassification classification, const QString& text, const QString& key);
    /// \selector +log:inLine:placeholder:forKey:
    static LogLineIdentPtr logPlaceholder(LogClassification classification,
                                          const LogLineIdentPtr& inLine,
                                          const QString& text,
                                          const QString& key);
    /// The heading; under it, once, the exception's reason; and under that the exception itself at Debug, the first 60
    /// times for each reason under a key. Answers the heading. \selector +log:inLine:placeholder:forKey:byException:
    static LogLineIdentPtr logPlaceholder(const LoggedOccurrence& occurrence);

    // ---- start and stop of the process

    /// "started NAME" with facts of the process under it, at Debug. Answers the start line. \selector +logStartProcess:
    static LogLineIdentPtr logStartProcess(const QString& name);
    /// "stopping NAME", with the exit status unless it is 0, at Debug. \selector +logStopProcess:exitStatus:
    static LogLineIdentPtr logStopProcess(const QString& name, int exitStatus);

    // ---- a logger

    /// Where a logger takes from what is not its caller's; what is left out is the system's.
    struct Surroundings
    {
        std::function<LogDate()> now;
        std::function<std::optional<platform::SymbolLocation>(std::uintptr_t)> symbolAt;
    };

    /// \selector init
    Logr();
    explicit Logr(Surroundings surroundings);
    /// Whoever overrides logCString must close() in its destructor, so that no line comes after it.
    /// Must not be called on the writer queue.
    virtual ~Logr();
    Logr(const Logr&) = delete;
    Logr& operator=(const Logr&) = delete;
    Logr(Logr&&) = delete;
    Logr& operator=(Logr&&) = delete;

    /// The one operation through which every line passes: takes the identity and the date, and leaves the rest to the
    /// writer queue. \selector -log:inLine:message:
    virtual LogLineIdentPtr
    writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message);
    /// \selector -log:inLine:format:
    template<class... Arguments>
    LogLineIdentPtr writeFormat(LogClassification classification,
                                const LogLineIdentPtr& inLine,
                                LogFormat<Arguments...> format,
                                Arguments&&... arguments)
    {
        return writeFormatted(classification, inLine, format, fmt::make_format_args(arguments...));
    }
    /// \selector -log:inLine:format:args:
    LogLineIdentPtr writeFormatted(LogClassification classification,
                                   const LogLineIdentPtr& inLine,
                                   fmt::string_view format,
                                   fmt::format_args arguments);
    /// Whether \p exception is not the very one that was logged last. \selector -isNewException:
    [[nodiscard]] bool isNewException(const Exception& exception) const;
    /// \selector -log:map:inLine:exception:
    LogLineIdentPtr writeException(LogClassification classification,
                                   const UserInfoLogClassifications& map,
                                   const LogLineIdentPtr& inLine,
                                   const Exception& exception);
    /// \selector -log:map:inLine:error:
    LogLineIdentPtr writeError(LogClassification classification,
                               const UserInfoLogClassifications& map,
                               const LogLineIdentPtr& inLine,
                               const Error& error);
    /// Each entry as writeKey; at its key's classification in \p map, else at \p classification; private keys (those
    /// with a leading ".") at Subrosa. Answers the first entry's line. \selector -log:map:inLine:dictionary:
    LogLineIdentPtr writeDictionary(LogClassification classification,
                                    const UserInfoLogClassifications& map,
                                    const LogLineIdentPtr& inLine,
                                    const QVariantMap& dictionary);
    /// \selector -log:inLine:key:value:
    LogLineIdentPtr writeKey(LogClassification classification,
                             const LogLineIdentPtr& inLine,
                             const QString& key,
                             const QVariant& value);
    /// "key: N bytes" and rows of 64 bytes under it at Details (diagnostics/data_dump.h).
    /// \selector -log:inLine:key:data:tail:
    LogLineIdentPtr writeData(const LoggedData& logged);

    /// Writes the lines that the rate limiter holds back, and says how many it dropped, as of \p date. On the writer
    /// queue only. \selector -unspoolTailAt:
    void unspoolTailAt(LogDate date);
    /// "2025-07-30 12:34:56.789 +0200 Failure message [6.73946252.4312.17]". On the writer queue only.
    /// \selector -formatMessage:date:inLine:class:classString:
    [[nodiscard]] QString formatMessage(const LogLine& line);
    /// Hands a formatted line on in plain ASCII. On the writer queue only. \selector -logMessage:
    void logMessage(const QString& line);
    /// Writes one finished line, without its newline; nothing here. On the writer queue only. \selector -logCString:
    virtual void logCString(const QByteArray& line);
    /// Waits for every line before and writes those held back. \selector -flush
    virtual void flush();
    /// Flushes, then closes the output. May be called on the writer queue. \selector -close
    virtual void close();
    /// Shows the log to the user; nothing here. \selector -openUsingLaunchServices:
    virtual void openUsingLaunchServices(const QVariant& parameters);

protected:
    /// The queue "log.writer".
    [[nodiscard]] SerialQueue& loggerQueue();

private:
    friend class SharedLogger;
    struct ExceptionStyle;
    struct QueuedLine;
    struct State;

    static LogLineIdentPtr logFormatted(LogClassification classification,
                                        const LogLineIdentPtr& inLine,
                                        fmt::string_view format,
                                        fmt::format_args arguments);
    void writeQueued(const QueuedLine& queued);
    void judge(const QueuedLine& queued);
    LogLineIdentPtr writeCausal(const ExceptionStyle& style, const LogLineIdentPtr& inLine, const Exception& exception);
    void writeBacktrace(const LogLineIdentPtr& inLine, const platform::ReturnAddresses& addresses);

    std::unique_ptr<State> m_state;
};

/// Logs \p message with the stack of the calling thread, at Debug, without stopping.
///
/// Threads: any thread.
void logStackTrace(const QString& message);

} // namespace havrel
