// SPDX-License-Identifier: MIT
// What observation costs: a set with nobody, one block and four blocks listening, a registration, and the bytes of the
// first one. The peer is what one writes without it: a NOTIFY signal connected to a function object that reads the
// property, remembers the old value and calls a block with both. Medians over rounds in which both take turns.
#include "foundation/observable.h"
#include "foundation/observing.h"

#include <QMetaProperty>
#include <QObject>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <vector>

#include <malloc.h>

namespace {

std::size_t g_bytes = 0; // in use, as malloc counts them; one thread

} // namespace

// Counts what the toolkit's libraries allocate, too.
void* operator new(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    g_bytes += ::malloc_usable_size(memory);
    return memory;
}

void operator delete(void* memory) noexcept
{
    if (memory)
        g_bytes -= ::malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    operator delete(memory);
}

namespace havrel {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int kRounds = 15;
constexpr int kRepeats = 20'000; // a round

class ObservableBook : public Observable
{
    Q_OBJECT
    Q_PROPERTY(int pages READ pages WRITE setPages)

public:
    [[nodiscard]] int pages() const { return m_pages; }
    void setPages(int pages) { assign(m_pages, pages, "pages"); }

private:
    int m_pages = 0;
};

/// The peer's object.
class SignallingBook : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int pages READ pages WRITE setPages NOTIFY pagesChanged)

public:
    [[nodiscard]] int pages() const { return m_pages; }
    void setPages(int pages)
    {
        if (pages == m_pages)
            return;
        m_pages = pages;
        Q_EMIT pagesChanged();
    }
    Q_SIGNAL void pagesChanged();

private:
    int m_pages = 0;
};

std::size_t g_calls = 0;

SettingBlock countingBlock()
{
    return [](QObject*, QObject*, const QVariant&, const QVariant&) { ++g_calls; };
}

QMetaObject::Connection relay(SignallingBook& book, const SettingBlock& block)
{
    return QObject::connect(
        &book, &SignallingBook::pagesChanged, &book, [&book, block, before = book.property("pages")]() mutable {
            const QVariant now = book.property("pages");
            const QVariant old = std::exchange(before, now);
            if (old != now)
                block(&book, &book, old, now);
        });
}

void observe(ObservableBook& book)
{
    observeProperty(book, "pages", ObservationOptions::NoInitialCall, countingBlock());
}

double nanosecondsEach(const std::function<void(int)>& work)
{
    const auto start = SteadyClock::now();
    for (int i = 0; i < kRepeats; ++i)
        work(i);
    return std::chrono::duration<double, std::nano>(SteadyClock::now() - start).count() / kRepeats;
}

double median(std::vector<double> samples)
{
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

void report(const char* what, const char* unit, double ours, double peers)
{
    std::printf("%-44s %9.1f %9.1f %-5s  ratio %.2f\n", what, ours, peers, unit, ours / peers);
}

void compare(const char* what, const std::function<void(int)>& ours, const std::function<void(int)>& peers)
{
    std::vector<double> ourTimes;
    std::vector<double> peerTimes;
    for (int round = 0; round < kRounds; ++round) {
        ourTimes.push_back(nanosecondsEach(ours));
        peerTimes.push_back(nanosecondsEach(peers));
    }
    report(what, "ns", median(ourTimes), median(peerTimes));
}

void compareSets(const char* what, int listeners)
{
    ObservableBook ours;
    SignallingBook peer;
    for (int i = 0; i < listeners; ++i) {
        observe(ours);
        relay(peer, countingBlock());
    }
    compare(
        what, [&ours](int i) { ours.setPages(i + 1); }, [&peer](int i) { peer.setPages(i + 1); });
}

void compareRegistrations()
{
    ObservableBook ours;
    SignallingBook peer;
    compare(
        "register and end, own property",
        [&ours](int) {
            observe(ours);
            removeAllObservations(ours);
        },
        [&peer](int) { QObject::disconnect(relay(peer, countingBlock())); });
}

template<class Work>
double bytesOf(const Work& work)
{
    const std::size_t before = g_bytes;
    work();
    return static_cast<double>(g_bytes - before);
}

void compareMemory()
{
    ObservableBook ours;
    SignallingBook peer;
    const double ourFirst = bytesOf([&ours] { observe(ours); });
    const double peerFirst = bytesOf([&peer] { relay(peer, countingBlock()); });
    report("first observation", "bytes", ourFirst, peerFirst);
}

} // namespace
} // namespace havrel

int main()
{
    std::printf("%-44s %9s %9s\n", "", "here", "signals");
    havrel::compareSets("set, nobody listens", 0);
    havrel::compareSets("set, one block", 1);
    havrel::compareSets("set, four blocks", 4);
    havrel::compareRegistrations();
    havrel::compareMemory();
    return havrel::g_calls > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

#include "observation_bench.moc"
