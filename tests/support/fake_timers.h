// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/timers.h"

#include <QtGlobal>

#include <algorithm>
#include <optional>
#include <vector>

namespace havrel::tests {

/// Time that passes when the test says so.
class FakeTimers final : public Timers
{
public:
    [[nodiscard]] std::unique_ptr<Timer> makeTimer(std::function<void()> fired) override
    {
        return std::make_unique<FakeTimer>(*this, std::move(fired));
    }
    [[nodiscard]] std::chrono::milliseconds elapsed() override { return m_now += m_step; }

    /// Lets time pass; timers fire at their moments, in their order.
    void pass(std::chrono::milliseconds time)
    {
        const auto end = m_now + time;
        while (FakeTimer* next = nextUntil(end)) {
            m_now = std::max(m_now, *next->m_due);
            next->fire();
        }
        m_now = std::max(m_now, end);
    }

    /// Each look at the clock takes this long from here on.
    void setStep(std::chrono::milliseconds step) { m_step = step; }

private:
    class FakeTimer final : public Timer
    {
    public:
        FakeTimer(FakeTimers& timers, std::function<void()> fired)
            : m_timers(timers)
            , m_fired(std::move(fired))
        {
            m_timers.m_made.push_back(this);
        }
        ~FakeTimer() override { std::erase(m_timers.m_made, this); }
        Q_DISABLE_COPY_MOVE(FakeTimer)

        void start(std::chrono::milliseconds wait) override { m_due = m_timers.m_now + wait; }
        void stop() override { m_due.reset(); }
        [[nodiscard]] bool isPending() const override { return m_due.has_value(); }
        [[nodiscard]] std::chrono::milliseconds remaining() const override
        {
            return m_due ? std::max(*m_due - m_timers.m_now, std::chrono::milliseconds(0))
                         : std::chrono::milliseconds(0);
        }

        void fire()
        {
            stop();
            m_fired();
        }

        std::optional<std::chrono::milliseconds> m_due;

    private:
        FakeTimers& m_timers;
        std::function<void()> m_fired;
    };

    [[nodiscard]] FakeTimer* nextUntil(std::chrono::milliseconds end) const
    {
        FakeTimer* next = nullptr;
        for (FakeTimer* each : m_made)
            if (each->m_due && *each->m_due <= end && (next == nullptr || *each->m_due < *next->m_due))
                next = each;
        return next;
    }

    std::chrono::milliseconds m_now{0};
    std::chrono::milliseconds m_step{0};
    std::vector<FakeTimer*> m_made;
};

} // namespace havrel::tests
