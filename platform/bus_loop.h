// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_library.h"
#include "platform/bus_messages.h"
#include "platform/owned_descriptor.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace havrel::platform {

/// Something that lives on the event thread beside the bus object: a call that waits for its answer, an export.
class BusHeld
{
public:
    BusHeld() = default;
    virtual ~BusHeld();
    BusHeld(const BusHeld&) = delete;
    BusHeld& operator=(const BusHeld&) = delete;
    BusHeld(BusHeld&&) = delete;
    BusHeld& operator=(BusHeld&&) = delete;

    /// The bus object has gone, because of \p error; this object goes next.
    virtual void lost(int error);
};

struct EndBusSlot
{
    void operator()(sd_bus_slot* slot) const noexcept { busLibrary()->sd_bus_slot_unref(slot); }
};
using OwnedBusSlot = std::unique_ptr<sd_bus_slot, EndBusSlot>;

struct EndBusMessage
{
    void operator()(sd_bus_message* message) const noexcept { busLibrary()->sd_bus_message_unref(message); }
};
using OwnedBusMessage = std::unique_ptr<sd_bus_message, EndBusMessage>;

/// The event thread of one connection. The library's bus object, its messages and its slots belong to one thread at a
/// time: to this one, except while it waits for the bus, when another thread may borrow them for a task. That spares a
/// message two changes of threads.
///
/// Threads: any thread, except where a member says otherwise.
class BusLoop
{
public:
    using Task = std::function<void()>;

    /// \param disconnected runs on the event thread when an opened bus goes away
    explicit BusLoop(Task disconnected);
    ~BusLoop();
    BusLoop(const BusLoop&) = delete;
    BusLoop& operator=(const BusLoop&) = delete;
    BusLoop(BusLoop&&) = delete;
    BusLoop& operator=(BusLoop&&) = delete;

    /// Starts the thread and waits until the bus has greeted. Called once.
    /// \param address empty: that of \p kind
    /// \return 0 or an errno value
    [[nodiscard]] int start(BusKind kind, const QByteArray& address, std::chrono::milliseconds limit);
    /// Runs what is queued, and ends the thread. Not on the event thread.
    void stop();

    /// Queues \p task. \return false when the thread has ended or will: it is then dropped.
    bool post(Task task);
    /// Runs \p task here, when the event thread waits and nothing is queued; queues it otherwise. The order of one
    /// thread's tasks is kept.
    /// \return false when the thread has ended or will: it is then dropped.
    bool runSoon(Task task);
    /// Runs \p task on the event thread and waits for it; at once where it is called there, or in another task.
    /// \return false when the thread has ended: it is then dropped.
    bool run(const Task& task);
    /// Whether the calling code is a task, or called by the bus.
    [[nodiscard]] bool isCurrent() const noexcept { return std::this_thread::get_id() == m_runner.load(); }

    /// The unique name that the bus gave; empty before.
    [[nodiscard]] QByteArray uniqueName() const { return m_uniqueName; }

    // Members for tasks and what the bus calls.

    /// Null before it is opened and once it is lost.
    [[nodiscard]] sd_bus* bus() const noexcept { return m_bus; }
    /// Keeps \p held, until it is released or the bus is lost. \return its number, never 0.
    quint64 hold(std::unique_ptr<BusHeld> held);
    [[nodiscard]] std::unique_ptr<BusHeld> release(quint64 number);
    [[nodiscard]] BusHeld* held(quint64 number) const;

private:
    enum class State { Opening, Open, Lost };

    void live(BusKind kind, const QByteArray& address);
    [[nodiscard]] int open(BusKind kind, const QByteArray& address);
    [[nodiscard]] int openAt(const QByteArray& address);
    void startTrace();
    void runTasks();
    void process();
    void greet();
    void wait();
    [[nodiscard]] int pollTimeout() const;
    void lose(int error);
    [[nodiscard]] bool isOver();
    [[nodiscard]] bool isQueueEmpty();
    void wakeIfNeeded();

    const Task m_disconnected;
    OwnedDescriptor m_wake;
    std::thread m_thread;
    std::mutex m_turn;                     // to use the bus; the event thread has it except while it waits
    std::atomic<std::thread::id> m_runner; // the thread whose turn it is
    std::promise<int> m_greeting;

    std::mutex m_mutex;
    std::vector<Task> m_tasks; // guarded by m_mutex, as m_ending
    bool m_ending = true;      // also before the start

    sd_bus* m_bus = nullptr;
    State m_state = State::Opening;
    QByteArray m_uniqueName;
    std::map<quint64, std::unique_ptr<BusHeld>> m_held;
    quint64 m_lastNumber = 0;
};

} // namespace havrel::platform
