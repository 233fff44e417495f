// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/backtrace_registry.h"
#include "diagnostics/logr.h"
#include "diagnostics/rate_limiter.h"
#include "foundation/dispatch.h"
#include "foundation/thread_annotations.h"

namespace havrel {

/// What a logger consists of. Only for the sources of the logging facade.
struct Logr::State
{
    explicit State(Surroundings given);

    [[nodiscard]] LogDate now() const;
    [[nodiscard]] std::optional<platform::SymbolLocation> symbolAt(std::uintptr_t address) const;

    const Surroundings surroundings;
    mutable Mutex lastExceptionLock;
    std::optional<Exception> lastException HAVREL_GUARDED_BY(lastExceptionLock);
    BacktraceRegistry backtraces;

    // On the writer queue only.
    LogDateFormatter dateFormatter;
    RateLimiter limiter;

    std::unique_ptr<SerialQueue> loggerQueue;
};

/// What travels to the writer queue.
struct Logr::QueuedLine
{
    /// The same while it is still with the caller: what is queued is made of it, in place.
    struct Request
    {
        using QueuedAs = QueuedLine;

        Logr& logger;
        const LogMessage& message;
        const LogLineIdentPtr& identity;
        LogDate date;
        LogClassification classification{};
    };

    explicit QueuedLine(const Request& request)
        : logger(request.logger)
        , message(request.message)
        , identity(request.identity)
        , date(request.date)
        , classification(request.classification)
    {
    }

    void operator()() const { logger.writeQueued(*this); }

    Logr& logger;
    const LogMessage message;
    const LogLineIdentPtr identity;
    const LogDate date;
    const LogClassification classification;
};

/// How an exception and its causes are written.
struct Logr::ExceptionStyle
{
    LogClassification classification;
    const UserInfoLogClassifications& map;
    int depth; ///< number of exceptions that this one caused
};

} // namespace havrel
