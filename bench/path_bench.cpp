// SPDX-License-Identifier: MIT
// Paths against std::filesystem::path: the paths of a folder's entries, made and asked for their name.
#include "fs/path.h"

#include "fs/sub_path.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

using havrel::JNPath;
using havrel::JNPathPtr;
using havrel::JNSubPath;

constexpr int kEntries = 1000;
const std::string kFolder = "/home/somebody/Documents/Projects/a folder of some depth/Drawings";

std::vector<std::string> entryNames()
{
    std::vector<std::string> names;
    for (int i = 0; i < kEntries; ++i)
        names.push_back("a drawing of usual length " + std::to_string(i) + ".svg");
    return names;
}

/// Names and whole paths as bytes, as a folder's reader hands them out.
struct Entries
{
    Entries()
    {
        for (const std::string& name : entryNames()) {
            names.push_back(QByteArray::fromStdString(name));
            paths.push_back(QByteArray::fromStdString(kFolder + '/' + name));
        }
    }
    std::vector<QByteArray> names;
    std::vector<QByteArray> paths;
};

void makeStandardPaths(benchmark::State& state)
{
    const Entries entries;
    for (auto _ : state) {
        std::vector<std::filesystem::path> made;
        made.reserve(kEntries);
        for (const QByteArray& path : entries.paths)
            made.emplace_back(path.constData());
        benchmark::DoNotOptimize(made.data());
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void makePaths(benchmark::State& state)
{
    const Entries entries;
    for (auto _ : state) {
        std::vector<JNPathPtr> made;
        made.reserve(kEntries);
        for (const QByteArray& path : entries.paths)
            made.push_back(JNPath::withCPath(QByteArray(path.constData(), path.size())));
        benchmark::DoNotOptimize(made.data());
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void joinStandardPaths(benchmark::State& state)
{
    const Entries entries;
    const std::filesystem::path folder(kFolder);
    for (auto _ : state) {
        std::vector<std::filesystem::path> made;
        made.reserve(kEntries);
        for (const QByteArray& name : entries.names)
            made.push_back(folder / name.constData());
        benchmark::DoNotOptimize(made.data());
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void makeSubPaths(benchmark::State& state)
{
    const Entries entries;
    const JNPathPtr folder = JNPath::withCPath(QByteArray::fromStdString(kFolder));
    for (auto _ : state) {
        std::vector<JNPathPtr> made;
        made.reserve(kEntries);
        for (const QByteArray& name : entries.names)
            made.push_back(JNSubPath::withCName(QByteArray(name.constData(), name.size()), folder));
        benchmark::DoNotOptimize(made.data());
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void joinSubPaths(benchmark::State& state)
{
    const Entries entries;
    const JNPathPtr folder = JNPath::withCPath(QByteArray::fromStdString(kFolder));
    for (auto _ : state) {
        for (const QByteArray& name : entries.names)
            benchmark::DoNotOptimize(JNSubPath::withCName(name, folder)->cPath().constData());
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

BENCHMARK(makeStandardPaths);
BENCHMARK(makePaths);
BENCHMARK(joinStandardPaths);
BENCHMARK(makeSubPaths);
BENCHMARK(joinSubPaths);

/// Shows the runs, and at the end each of ours as a multiple of its peer's time.
class RatioReporter final : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            m_times[run.benchmark_name()] = run.GetAdjustedCPUTime();
    }

    void Finalize() override
    {
        showRatio("makePaths", "makeStandardPaths");
        showRatio("makeSubPaths", "joinStandardPaths");
        showRatio("joinSubPaths", "joinStandardPaths");
    }

private:
    void showRatio(const char* ours, const char* peers) const
    {
        const auto our = m_times.find(ours);
        const auto peer = m_times.find(peers);
        if (our != m_times.end() && peer != m_times.end())
            std::printf("%s takes %.2f of the time of %s\n", ours, our->second / peer->second, peers);
    }

    std::map<std::string, double> m_times;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
