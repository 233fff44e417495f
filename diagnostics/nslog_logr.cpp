// SPDX-License-Identifier: MIT
#include "diagnostics/nslog_logr.h"

#include <utility>

namespace havrel {
namespace {

platform::JournalPriority priorityOf(LogClassification classification)
{
    switch (classification) {
    case LogClassification::Warning:
    case LogClassification::Failure:
        return platform::JournalPriority::Error;
    case LogClassification::Minutia:
    case LogClassification::Details:
        return platform::JournalPriority::Info;
    case LogClassification::Debug:
        return platform::JournalPriority::Debug;
    default:
        return platform::JournalPriority::Notice;
    }
}

} // namespace

NSLogLogr::NSLogLogr()
    : NSLogLogr(platform::writeToConsole)
{
}

NSLogLogr::NSLogLogr(ConsoleSink sink)
    : m_sink(std::move(sink))
{
}

LogLineIdentPtr
NSLogLogr::writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message)
{
    if (classification != LogClassification::Subrosa)
        m_sink(priorityOf(classification), message.text());
    return inLine;
}

void NSLogLogr::close() {}

} // namespace havrel
