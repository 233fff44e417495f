// SPDX-License-Identifier: MIT
#include "components/capture_schedule.h"

#include "components/engine_fault.h"
#include "components/scheduler_notices.h"
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/clock.h"
#include "foundation/reference_date.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

namespace havrel {
namespace {

using namespace Qt::StringLiterals;
using platform::Proceed;

constexpr int kMostRuns = 100;
constexpr int kMostAttempts = 3;
constexpr qsizetype kLongestWords = 2000;           // characters of what the engine says that are kept
constexpr double kLongestWait = 365.25 * 24 * 3600; // seconds; more than the clock's range is no time to wait for

const QString kActions = u"actions"_s;
const QString kRuns = u"runs"_s;
const QString kHoldTime = u"holdTime"_s;
const QString kLastNumber = u"lastNumber"_s;

/// What is no time counts as at once.
double finite(double time)
{
    return std::isfinite(time) ? time : 0;
}

template<class Iterator>
Iterator withIdentifier(Iterator begin, Iterator end, const QString& id)
{
    return std::find_if(begin, end, [&id](const ScheduledAction& each) { return each.id == id; });
}

void takeFailure(RunSummary& run, const QString& reason)
{
    run.reason = reason.isNull() ? u"for an unknown reason"_s : reason;
    run.fault = u""_s;
}

void takeFailure(RunSummary& run, const HVException& exception)
{
    takeFailure(run, exception.reason());
    run.fault += exception.detail(QLatin1StringView("Fault")).toString();
    run.words = exception.detail(detail_key::kErrDescription).toString().right(kLongestWords);
}

QVariantMap described(const EngineProgress& progress)
{
    return {{u"fraction"_s, progress.fraction},
            {u"files"_s, progress.files},
            {u"filesDone"_s, progress.filesDone},
            {u"bytes"_s, progress.bytes},
            {u"bytesDone"_s, progress.bytesDone}};
}

} // namespace

CaptureSchedule::CaptureSchedule(const QByteArray& stateFile, Runner runner, Listener listener)
    : m_file(stateFile)
    , m_runner(std::move(runner))
    , m_listener(std::move(listener))
{
    {
        const MutexLock guard(m_lock);
        load();
    }
    m_queue.async([this] { work(); });
}

CaptureSchedule::~CaptureSchedule()
{
    stop();
}

void CaptureSchedule::stop()
{
    {
        const MutexLock guard(m_lock);
        m_stops = true;
        m_change.notifyAll();
    }
    m_queue.barrier();
}

// ---- what is kept

void CaptureSchedule::load()
{
    const QVariantMap kept = m_file.read();
    m_runs = kept.value(kRuns).toList();
    m_lastNumber = kept.value(kLastNumber).toLongLong();
    m_holdTime = finite(kept.value(kHoldTime).toDouble());
    for (const QVariant& each : kept.value(kActions).toList()) {
        const std::optional<ScheduledAction> action = ScheduledAction::fromDictionary(each.toMap());
        if (action && action->attempts < kMostAttempts)
            m_actions.append(*action);
        else if (action)
            record({.action = *action, .reason = u"the scheduler did not survive it"_s, .fault = u""_s});
    }
}

void CaptureSchedule::keep() const
{
    QVariantList actions;
    for (const ScheduledAction& each : m_actions)
        actions.append(each.asDictionary());
    m_file.keep({{kActions, actions}, {kRuns, m_runs}, {kHoldTime, m_holdTime}, {kLastNumber, m_lastNumber}});
}

void CaptureSchedule::changed()
{
    keep();
    m_change.notifyAll();
}

void CaptureSchedule::record(const RunSummary& run)
{
    m_runs.append(run.asDictionary());
    while (m_runs.size() > kMostRuns)
        m_runs.removeFirst();
}

// ---- what it is told

QString CaptureSchedule::add(const QByteArray& archive, const QByteArrayList& items)
{
    const MutexLock guard(m_lock);
    const QString id = QString::number(++m_lastNumber);
    m_actions.append({.id = id, .archive = archive, .items = items, .time = time()});
    changed();
    return id;
}

void CaptureSchedule::setTime(const QString& id, double time)
{
    const MutexLock guard(m_lock);
    if (const auto action = find(id); action != m_actions.end())
        action->time = finite(time);
    changed();
}

void CaptureSchedule::setSuspended(const QString& id, bool suspended)
{
    const MutexLock guard(m_lock);
    if (const auto action = find(id); action != m_actions.end())
        action->suspended = suspended;
    changed();
}

void CaptureSchedule::setHoldTime(double time)
{
    const MutexLock guard(m_lock);
    m_holdTime = finite(time);
    changed();
}

double CaptureSchedule::holdTime() const
{
    const MutexLock guard(m_lock);
    return m_holdTime;
}

void CaptureSchedule::setClockAhead(double seconds)
{
    const MutexLock guard(m_lock);
    m_clockAhead = finite(seconds);
    m_change.notifyAll();
}

/// One that has not begun.
auto CaptureSchedule::find(const QString& id) -> Actions::iterator
{
    return id == m_running ? m_actions.end() : withIdentifier(m_actions.begin(), m_actions.end(), id);
}

// ---- when

double CaptureSchedule::time() const
{
    return intervalSinceReferenceDate(now()) + m_clockAhead;
}

double CaptureSchedule::dueTimeOf(const ScheduledAction& action) const
{
    const bool never = action.suspended || action.id == m_running;
    return never ? std::numeric_limits<double>::infinity() : std::max(action.time, m_holdTime);
}

auto CaptureSchedule::next() const -> Actions::const_iterator
{
    auto first = m_actions.cend();
    double earliest = std::numeric_limits<double>::infinity();
    for (auto each = m_actions.cbegin(); each != m_actions.cend(); ++each)
        if (const double due = dueTimeOf(*each); due < earliest) {
            earliest = due;
            first = each;
        }
    return first;
}

void CaptureSchedule::waitForChange()
{
    const auto first = next();
    if (first == m_actions.end())
        return m_change.wait(m_lock);
    const std::chrono::duration<double> wait(std::clamp(dueTimeOf(*first) - time(), 0.0, kLongestWait));
    (void)m_change.waitUntil(m_lock,
                             std::chrono::system_clock::now() + std::chrono::ceil<std::chrono::milliseconds>(wait));
}

// ---- the work

void CaptureSchedule::work()
{
    while (const std::optional<ScheduledAction> action = begin())
        finish(run(*action));
}

/// Waits for something to do. \return none at the end
std::optional<ScheduledAction> CaptureSchedule::begin()
{
    const MutexLock guard(m_lock);
    while (!m_stops) {
        const auto first = next();
        if (first != m_actions.end() && dueTimeOf(*first) <= time()) {
            const auto action = find(first->id);
            ++action->attempts;
            m_running = action->id;
            m_started = time();
            m_progress = {};
            changed();
            return *action;
        }
        waitForChange();
    }
    return std::nullopt;
}

RunSummary CaptureSchedule::run(const ScheduledAction& action)
{
    RunSummary result{.action = action};
    try {
        result.summary = m_runner(action.archive, action.items, [this, &action](const EngineProgress& progress) {
            return took(action.id, progress);
        });
    } catch (const HVException& exception) {
        takeFailure(result, exception);
    } catch (const std::exception& exception) {
        takeFailure(result, QString::fromLocal8Bit(exception.what()));
    }
    return result;
}

Proceed CaptureSchedule::took(const QString& id, const EngineProgress& progress)
{
    {
        const MutexLock guard(m_lock);
        if (m_stops)
            return Proceed::No;
        if (std::exchange(m_progress, progress) == progress)
            return Proceed::Yes;
    }
    QVariantMap info = described(progress);
    info.insert(scheduler_notices::kID, id);
    tell(scheduler_notices::kProgressed, info);
    return Proceed::Yes;
}

void CaptureSchedule::tell(QLatin1StringView notice, const QVariantMap& info) const
{
    if (m_listener)
        m_listener(notice, info);
}

/// Whether it is not the action's own end: this process ends, or somebody has made the engine stop, as the system does
/// when it ends the session. Then it is not to blame, but is not made again and again either.
bool CaptureSchedule::isToBeMadeAgain(const RunSummary& run, ScheduledAction& action) const
{
    if (run.reason.isNull())
        return false;
    if (m_stops) {
        --action.attempts;
        return true;
    }
    return run.fault == wordOf(EngineFault::Stopped) && action.attempts < kMostAttempts;
}

void CaptureSchedule::finish(const RunSummary& run)
{
    {
        const MutexLock guard(m_lock);
        m_running = QString();
        const auto action = find(run.action.id);
        if (isToBeMadeAgain(run, *action))
            return changed();
        RunSummary ended = run;
        ended.started = m_started;
        ended.ended = time();
        record(ended);
        m_actions.erase(action);
        changed();
    }
    if (!run.reason.isNull())
        Logr::log(LogClassification::Failure, QStringLiteral("capture failed: %1").arg(run.reason));
    tell(scheduler_notices::kEnded, {{scheduler_notices::kID, run.action.id}});
}

// ---- what it tells

QVariantMap CaptureSchedule::volatileInfo() const
{
    const MutexLock guard(m_lock);
    QVariantMap info{{u"queued"_s, qint64{m_actions.size()}}, {kHoldTime, m_holdTime}, {u"clockAhead"_s, m_clockAhead}};
    const auto running = withIdentifier(m_actions.begin(), m_actions.end(), m_running);
    if (running == m_actions.end())
        return info;
    info.insert(described(m_progress));
    info.insert({{u"running"_s, running->asDictionary()}, {u"started"_s, m_started}});
    return info;
}

QVariantMap CaptureSchedule::runSummaries() const
{
    const MutexLock guard(m_lock);
    QVariantMap result;
    for (const QVariant& each : m_runs)
        result.insert(each.toMap().value(u"id"_s).toString(), each);
    return result;
}

QVariantList CaptureSchedule::actions() const
{
    const MutexLock guard(m_lock);
    QVariantList result;
    for (const ScheduledAction& each : m_actions)
        result.insert(each.id == m_running ? 0 : result.size(), each.asDictionary());
    return result;
}

QVariantList CaptureSchedule::nextAction() const
{
    const MutexLock guard(m_lock);
    const auto first = next();
    return first == m_actions.end() ? QVariantList() : QVariantList{first->asDictionary()};
}

} // namespace havrel
