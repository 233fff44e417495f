// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/timers.h"

#include <QTimer>

namespace havrel {
namespace {

class EventLoopTimer final : public Timer
{
public:
    explicit EventLoopTimer(const std::function<void()>& fired)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [fired] { fired(); });
    }

    void start(std::chrono::milliseconds wait) override { m_timer.start(wait); }
    void stop() override { m_timer.stop(); }
    [[nodiscard]] bool isPending() const override { return m_timer.isActive(); }
    [[nodiscard]] std::chrono::milliseconds remaining() const override
    {
        return isPending() ? m_timer.remainingTimeAsDuration() : std::chrono::milliseconds(0);
    }

private:
    QTimer m_timer;
};

class EventLoopTimers final : public Timers
{
public:
    [[nodiscard]] std::unique_ptr<Timer> makeTimer(std::function<void()> fired) override
    {
        return std::make_unique<EventLoopTimer>(fired);
    }
    [[nodiscard]] std::chrono::milliseconds elapsed() override
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
    }
};

} // namespace

Timer::~Timer() = default;
Timers::~Timers() = default;

Timers& Timers::ofEventLoop()
{
    static EventLoopTimers timers;
    return timers;
}

} // namespace havrel
