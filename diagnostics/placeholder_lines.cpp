// SPDX-License-Identifier: MIT
#include "diagnostics/placeholder_lines.h"

namespace havrel {
namespace {

constexpr std::uint64_t kMostExceptions = 60; // under one reason

} // namespace

LogLineIdentPtr PlaceholderLines::line(const QString& key) const
{
    const MutexLock guard(m_lock);
    return m_lines.value(key);
}

void PlaceholderLines::setLine(const LogLineIdentPtr& line, const QString& key)
{
    const MutexLock guard(m_lock);
    if (line)
        m_lines.insert(key, line);
    else
        m_lines.remove(key);
}

LogLineIdentPtr PlaceholderLines::heading(Logr& logger, const LoggedOccurrence& occurrence)
{
    if (auto known = line(occurrence.key))
        return known;
    auto written = logger.writeLine(occurrence.classification, occurrence.inLine, occurrence.placeholder);
    setLine(written, occurrence.key);
    return written;
}

LogLineIdentPtr PlaceholderLines::log(Logr& logger, const LoggedOccurrence& occurrence)
{
    const MutexLock guard(m_logging);
    LogLineIdentPtr main = heading(logger, occurrence);
    if (!main || !occurrence.exception)
        return main;
    const QString reason = occurrence.exception->reason();
    const auto group = heading(logger,
                               {.classification = LogClassification::Plain,
                                .inLine = main,
                                .placeholder = reason,
                                .key = occurrence.key + reason});
    if (group && group->count() < kMostExceptions)
        logger.writeException(
            LogClassification::Debug, HVException::userInfoLogClassifications(), group, *occurrence.exception);
    return main;
}

} // namespace havrel
