// SPDX-License-Identifier: MIT
#include "diagnostics/rate_limiter.h"

#include <iterator>
#include <utility>

namespace havrel {
namespace {

constexpr qint64 kWindowLines = 10000;
constexpr std::size_t kTailLines = 2000;
// 10,000 and 2000 lines divided by the limit of 277.78 lines a second.
constexpr double kWindowSeconds = 35.99971200230399;
constexpr double kTailSeconds = 7.199942400460797;

} // namespace

/// The window's start minus \p date in seconds, negative in the normal course of time; 0 before the first window.
double RateLimiter::secondsBackTo(LogDate date) const
{
    return m_lastHotTime ? std::chrono::duration<double>(*m_lastHotTime - date).count() : 0.0;
}

RateLimiter::Verdict RateLimiter::judge(const QString& line, LogDate date)
{
    ++m_hotCount;
    if (m_hotCount < kWindowLines)
        return Verdict::Write;
    return m_hotCount == kWindowLines ? endWindow(line, date) : hold(line, date);
}

RateLimiter::Verdict RateLimiter::endWindow(const QString& line, LogDate date)
{
    const double elapsed = secondsBackTo(date);
    m_lastHotTime = date;
    const bool tooFast = elapsed != 0.0 && elapsed > -kWindowSeconds;
    if (!tooFast) {
        m_hotCount = 0;
        return Verdict::Write;
    }
    m_tailLines2.clear();
    m_tailLines.clear();
    m_tailLines.reserve(kTailLines);
    m_tailLines.push_back(line);
    return Verdict::Hold;
}

RateLimiter::Verdict RateLimiter::hold(const QString& line, LogDate date)
{
    m_tailLines.push_back(line);
    if (m_tailLines.size() < kTailLines)
        return Verdict::Hold;
    if (secondsBackTo(date) < -kTailSeconds)
        return Verdict::Release;
    m_tailLines2.swap(m_tailLines);
    m_tailLines.clear();
    m_lastHotTime = date;
    return Verdict::Hold;
}

std::optional<RateLimiter::Held> RateLimiter::unspool(LogDate date)
{
    if (m_tailLines.empty() && m_tailLines2.empty())
        return std::nullopt;
    Held held{.lines = std::exchange(m_tailLines2, {})};
    held.lines.insert(
        held.lines.end(), std::make_move_iterator(m_tailLines.begin()), std::make_move_iterator(m_tailLines.end()));
    held.discarded = m_hotCount - static_cast<qint64>(held.lines.size()) - kWindowLines;
    m_tailLines = {};
    m_lastHotTime = date;
    m_hotCount = 0;
    return held;
}

} // namespace havrel
