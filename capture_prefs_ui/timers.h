// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace havrel {

/// Calls back once, some time after it was started.
///
/// Threads: one thread at a time.
class Timer
{
public:
    Timer() = default;
    virtual ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    Timer(Timer&&) = delete;
    Timer& operator=(Timer&&) = delete;

    /// Begins to wait; a wait that is under way is given up.
    virtual void start(std::chrono::milliseconds wait) = 0;
    virtual void stop() = 0;
    [[nodiscard]] virtual bool isPending() const = 0;
    /// Until it calls back; 0 when it is not pending.
    [[nodiscard]] virtual std::chrono::milliseconds remaining() const = 0;
};

/// Where timers and elapsed time come from; tests put their own in its place.
///
/// Threads: the main thread only.
class Timers
{
public:
    Timers() = default;
    virtual ~Timers();
    Timers(const Timers&) = delete;
    Timers& operator=(const Timers&) = delete;
    Timers(Timers&&) = delete;
    Timers& operator=(Timers&&) = delete;

    /// Those of the event loop.
    [[nodiscard]] static Timers& ofEventLoop();

    /// \param fired is called from the event loop.
    [[nodiscard]] virtual std::unique_ptr<Timer> makeTimer(std::function<void()> fired) = 0;
    /// Time since some moment in the past; never goes back.
    [[nodiscard]] virtual std::chrono::milliseconds elapsed() = 0;
};

} // namespace havrel
