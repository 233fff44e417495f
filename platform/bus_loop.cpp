// SPDX-License-Identifier: MIT
#include "platform/bus_loop.h"

#include "platform/bus_trace.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <system_error>

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

/// For the calls that the library makes itself, rules for signals among them: the others say their own. Without this it
/// would give them 25 seconds.
constexpr uint64_t kNoLimit = UINT64_MAX;

/// Signals are for the threads of the program.
void blockSignals()
{
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

uint64_t monotonicMicroseconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1'000'000 + static_cast<uint64_t>(now.tv_nsec) / 1'000;
}

} // namespace

BusHeld::~BusHeld() = default;

void BusHeld::lost(int) {}

BusLoop::BusLoop(Task disconnected)
    : m_disconnected(std::move(disconnected))
    , m_wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

BusLoop::~BusLoop()
{
    stop();
}

int BusLoop::start(BusKind kind, const QByteArray& address, std::chrono::milliseconds limit)
{
    if (busLibrary() == nullptr)
        return ENOSYS;
    if (!m_wake.isOpen())
        return EMFILE;
    m_ending = false;
    auto greeting = m_greeting.get_future();
    try {
        m_thread = std::thread([this, kind, address] { live(kind, address); });
    } catch (const std::system_error& error) {
        m_ending = true;
        return error.code().value();
    }
    const bool came = greeting.wait_for(limit) == std::future_status::ready;
    const int error = came ? greeting.get() : ETIMEDOUT;
    if (error != 0)
        stop();
    return error;
}

void BusLoop::stop()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    ::eventfd_write(m_wake.get(), 1);
    m_thread.join();
}

bool BusLoop::post(Task task)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_ending)
            return false;
        m_tasks.push_back(std::move(task));
        if (m_tasks.size() > 1)
            return true; // it has been woken
    }
    ::eventfd_write(m_wake.get(), 1);
    return true;
}

bool BusLoop::runSoon(Task task)
{
    if (isCurrent())
        return post(std::move(task));
    const std::unique_lock turn(m_turn, std::try_to_lock);
    if (!turn.owns_lock() || m_bus == nullptr || isOver() || !isQueueEmpty())
        return post(std::move(task));
    m_runner = std::this_thread::get_id();
    task();
    wakeIfNeeded();
    m_runner = std::thread::id();
    return true;
}

/// The event thread waits for what was to be waited for when it began to.
void BusLoop::wakeIfNeeded()
{
    uint64_t until = UINT64_MAX;
    const bool isWhole = (busLibrary()->sd_bus_get_events(m_bus) & POLLOUT) == 0;
    const bool isTimeless = busLibrary()->sd_bus_get_timeout(m_bus, &until) >= 0 && until == UINT64_MAX;
    if (!isWhole || !isTimeless)
        ::eventfd_write(m_wake.get(), 1);
}

bool BusLoop::isQueueEmpty()
{
    const std::lock_guard lock(m_mutex);
    return m_tasks.empty();
}

bool BusLoop::run(const Task& task)
{
    if (isCurrent()) {
        task();
        return true;
    }
    std::promise<void> done;
    if (!post([&] {
            task();
            done.set_value();
        }))
        return false;
    done.get_future().wait();
    return true;
}

quint64 BusLoop::hold(std::unique_ptr<BusHeld> held)
{
    m_held.emplace(++m_lastNumber, std::move(held));
    return m_lastNumber;
}

std::unique_ptr<BusHeld> BusLoop::release(quint64 number)
{
    auto node = m_held.extract(number);
    return node.empty() ? nullptr : std::move(node.mapped());
}

BusHeld* BusLoop::held(quint64 number) const
{
    const auto found = m_held.find(number);
    return found == m_held.end() ? nullptr : found->second.get();
}

void BusLoop::live(BusKind kind, const QByteArray& address)
{
    m_turn.lock();
    m_runner = std::this_thread::get_id();
    blockSignals();
    ::pthread_setname_np(::pthread_self(), "bus");
    if (const int error = open(kind, address); error != 0)
        lose(error);
    startTrace();
    while (!isOver()) {
        runTasks();
        process();
        wait();
    }
    runTasks();
    lose(ECANCELED);
    m_runner = std::thread::id();
    m_turn.unlock();
}

int BusLoop::open(BusKind kind, const QByteArray& address)
{
    const BusLibrary& library = *busLibrary();
    int result = 0;
    if (!address.isEmpty())
        result = openAt(address);
    else
        result = kind == BusKind::System ? library.sd_bus_open_system(&m_bus) : library.sd_bus_open_user(&m_bus);
    if (result >= 0)
        result = library.sd_bus_set_method_call_timeout(m_bus, kNoLimit);
    return result < 0 ? -result : 0;
}

/// \return negative for an error, as the library does
int BusLoop::openAt(const QByteArray& address)
{
    const BusLibrary& library = *busLibrary();
    int result = library.sd_bus_new(&m_bus);
    if (result >= 0)
        result = library.sd_bus_set_address(m_bus, address.constData());
    if (result >= 0)
        result = library.sd_bus_set_bus_client(m_bus, 1);
    if (result >= 0)
        result = library.sd_bus_set_method_call_timeout(m_bus, kNoLimit);
    return result < 0 ? result : library.sd_bus_start(m_bus);
}

void BusLoop::startTrace()
{
    constexpr sd_bus_message_handler_t kTrace = [](sd_bus_message* message, void*, sd_bus_error*) {
        traceBusMessage(message);
        return 0;
    };
    if (m_bus != nullptr && tracesBus())
        (void)busLibrary()->sd_bus_add_filter(m_bus, nullptr, kTrace, nullptr);
}

bool BusLoop::isOver()
{
    const std::lock_guard lock(m_mutex);
    return m_ending;
}

void BusLoop::runTasks()
{
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (const Task& each : tasks)
        each();
}

void BusLoop::process()
{
    while (m_bus != nullptr) {
        const int result = busLibrary()->sd_bus_process(m_bus, nullptr);
        if (result < 0) {
            lose(-result);
            return;
        }
        greet();
        if (result == 0 || isOver())
            return;
        runTasks();
    }
}

void BusLoop::greet()
{
    if (m_state != State::Opening || busLibrary()->sd_bus_is_ready(m_bus) <= 0)
        return;
    const char* name = nullptr;
    if (const int result = busLibrary()->sd_bus_get_unique_name(m_bus, &name); result >= 0)
        m_uniqueName = name;
    m_state = State::Open;
    m_greeting.set_value(0);
}

int BusLoop::pollTimeout() const
{
    uint64_t until = UINT64_MAX;
    if (m_bus == nullptr || busLibrary()->sd_bus_get_timeout(m_bus, &until) < 0 || until == UINT64_MAX)
        return -1;
    const uint64_t now = monotonicMicroseconds();
    return until <= now ? 0 : static_cast<int>(std::min<uint64_t>((until - now + 999) / 1'000, INT_MAX));
}

void BusLoop::wait()
{
    const int events = m_bus == nullptr ? 0 : busLibrary()->sd_bus_get_events(m_bus);
    pollfd watched[] = {
        {.fd = m_wake.get(), .events = POLLIN, .revents = 0},
        {.fd = m_bus == nullptr ? -1 : busLibrary()->sd_bus_get_fd(m_bus),
         .events = static_cast<short>(std::max(events, 0)),
         .revents = 0},
    };
    if (events < 0)
        return; // what is wrong, processing will tell
    const int timeout = pollTimeout();
    m_runner = std::thread::id();
    m_turn.unlock();
    ::poll(watched, std::size(watched), timeout);
    m_turn.lock();
    m_runner = std::this_thread::get_id();
    eventfd_t times = 0;
    if (watched[0].revents != 0)
        ::eventfd_read(m_wake.get(), &times);
}

void BusLoop::lose(int error)
{
    const State before = std::exchange(m_state, State::Lost);
    sd_bus* bus = std::exchange(m_bus, nullptr);
    for (const auto& [number, held] : std::exchange(m_held, {}))
        held->lost(error);
    if (bus != nullptr)
        busLibrary()->sd_bus_close_unref(bus);
    if (before == State::Opening)
        m_greeting.set_value(error);
    else if (before == State::Open && !isOver() && m_disconnected)
        m_disconnected();
}

} // namespace havrel::platform
