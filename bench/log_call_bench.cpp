// SPDX-License-Identifier: MIT
// What a log call costs its caller, beside an asynchronous spdlog call with the same text. Both write a file line by
// line on a thread of their own. Prints medians in nanoseconds and our share of the peer's.
#include "diagnostics/logr.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include <fcntl.h>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

using havrel::LogClassification;
using havrel::Logr;
using SteadyClock = std::chrono::steady_clock;

constexpr int kRounds = 5;
constexpr int kCalls = 9000; // a round; the rate limiter does not interfere before 10,000
constexpr auto kPause = std::chrono::microseconds(5);

/// Writes each line with one call, as a log file does.
class FileWriter : public Logr
{
public:
    explicit FileWriter(const QByteArray& path)
        : m_file(::open(path.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0664))
    {
    }
    ~FileWriter() override
    {
        Logr::close();
        ::close(m_file);
    }
    Q_DISABLE_COPY_MOVE(FileWriter)

    void logCString(const QByteArray& line) override
    {
        static char s_newline = '\n';
        const std::array<iovec, 2> pieces{
            iovec{.iov_base = const_cast<char*>(line.constData()), .iov_len = static_cast<std::size_t>(line.size())},
            iovec{.iov_base = &s_newline, .iov_len = 1}};
        if (::writev(m_file, pieces.data(), static_cast<int>(pieces.size())) < 0)
            std::perror("writev");
    }

private:
    int m_file;
};

void waitFor(SteadyClock::duration pause)
{
    const auto end = SteadyClock::now() + pause;
    while (SteadyClock::now() < end) {
    }
}

using Samples = std::vector<double>; // nanoseconds

void sample(Samples& samples, SteadyClock::duration pause, const std::function<void(int)>& call)
{
    for (int i = 0; i < kCalls; ++i) {
        const auto start = SteadyClock::now();
        call(i);
        samples.push_back(std::chrono::duration<double, std::nano>(SteadyClock::now() - start).count());
        if (pause > SteadyClock::duration::zero())
            waitFor(pause);
    }
}

double quantile(Samples samples, double share)
{
    const auto place = samples.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(samples.size() - 1));
    std::nth_element(samples.begin(), place, samples.end());
    return *place;
}

struct Case
{
    const char* name;
    SteadyClock::duration pause;
    std::function<void(int)> ours;
    std::function<void(spdlog::logger&, int)> peers;
};

void runOurs(const Case& each, const QByteArray& path, Samples& samples)
{
    Logr::setSharedLogger(std::make_shared<FileWriter>(path));
    sample(samples, each.pause, each.ours);
    Logr::closeSharedLogger();
}

void runPeers(const Case& each, const QByteArray& path, Samples& samples)
{
    const auto threads = std::make_shared<spdlog::details::thread_pool>(8192, 1);
    const auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(path.toStdString());
    const auto logger = std::make_shared<spdlog::async_logger>("peer", sink, threads);
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %z %l %v [%t]");
    logger->flush_on(spdlog::level::trace); // line by line
    sample(samples, each.pause, [&](int i) { each.peers(*logger, i); });
}

void run(const Case& each, const QByteArray& folder)
{
    Samples ours;
    Samples peers;
    for (int round = 0; round < kRounds; ++round) {
        runOurs(each, folder + "/ours.log", ours);
        runPeers(each, folder + "/peers.log", peers);
    }
    const double ratio = quantile(ours, 0.5) / quantile(peers, 0.5);
    std::printf("%-32s %8.0f %8.0f %8.0f %8.0f %8.2f\n",
                each.name,
                quantile(ours, 0.5),
                quantile(ours, 0.99),
                quantile(peers, 0.5),
                quantile(peers, 0.99),
                ratio);
}

std::vector<Case> cases()
{
    static const QString s_text = QStringLiteral("cannot read attribute com.havrel.prefs of item");
    const auto plain = [](int) { Logr::log(LogClassification::Warning, s_text); };
    const auto peersPlain = [](spdlog::logger& logger, int) {
        logger.warn("cannot read attribute com.havrel.prefs of item");
    };
    const auto format = [](int i) {
        Logr::logFormat(LogClassification::Warning, "cannot read attribute {} of item {}", "com.havrel.prefs", i);
    };
    const auto peersFormat = [](spdlog::logger& logger, int i) {
        logger.warn("cannot read attribute {} of item {}", "com.havrel.prefs", i);
    };
    return {{"message, back to back", {}, plain, peersPlain},
            {"message, now and then", kPause, plain, peersPlain},
            {"format, back to back", {}, format, peersFormat},
            {"format, now and then", kPause, format, peersFormat}};
}

} // namespace

int main()
{
    const QTemporaryDir folder;
    std::printf("%-32s %8s %8s %8s %8s %8s\n", "ns a call", "p50", "p99", "peer p50", "peer p99", "ratio");
    for (const Case& each : cases())
        run(each, QFile::encodeName(folder.path()));
    return 0;
}
