// SPDX-License-Identifier: MIT
// What pattern definitions cost: to make and to compile, in memory, and with growing lines. The peer is the least that
// any reading of a glob line does: split it at the slashes, keep the parts, ask fnmatch about the last one. Times are
// processor time of one thread, medians over rounds in which both take turns; a UTF-8 locale, as programs run in.
#include "filters/pattern_filter_def.h"

#include <QString>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <fnmatch.h>
#include <malloc.h>
#include <time.h>

namespace havrel {
namespace {

constexpr int kRounds = 15;
constexpr int kLongRounds = 7;
constexpr int kRepeats = 2'000; // of all lines, a round

volatile std::size_t g_sink = 0; // NOLINT: keeps results from being optimised away

const QStringList& plainLines()
{
    static const QStringList s_lines{
        QStringLiteral("//*.tmp"),
        QStringLiteral("Library//Caches*"),
        QStringLiteral("Users/work//*.o"),
        QStringLiteral("build//[a-z]*.log"),
        QStringLiteral("node_modules"),
        QStringLiteral("Library/Application Support//*.cache/+"),
    };
    return s_lines;
}

/// Processor time of this thread, in nanoseconds.
double processorTime()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

double timeOf(const std::function<void()>& work)
{
    const double start = processorTime();
    work();
    return processorTime() - start;
}

double median(std::vector<double> samples)
{
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

/// The peer: parts and a judgement; no object, no modes, no options.
void splitAndMatch(const std::string& line)
{
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t slash = std::min(line.find('/', start), line.size());
        parts.emplace_back(line, start, slash - start);
        start = slash + 1;
    }
    g_sink = g_sink + static_cast<std::size_t>(::fnmatch(parts.back().c_str(), "name.ext", FNM_PERIOD));
}

struct Case
{
    const char* name;
    std::function<void()> workOnAllLines;
    std::vector<double> samples = {};
};

std::vector<Case> cases()
{
    std::vector<std::string> bytes;
    std::vector<PatternFilterDefPtr> definitions;
    for (const QString& line : plainLines()) {
        bytes.push_back(line.toStdString());
        definitions.push_back(std::make_shared<PatternFilterDef>(line));
    }
    const auto peer = [bytes] { std::for_each(bytes.begin(), bytes.end(), splitAndMatch); };
    const auto compile = [definitions] {
        for (const PatternFilterDefPtr& definition : definitions) {
            definition->uncompile();
            g_sink = g_sink + static_cast<std::size_t>(definition->compile());
        }
    };
    const auto makeAndCompile = [] {
        for (const QString& line : plainLines())
            g_sink = g_sink + static_cast<std::size_t>(std::make_shared<PatternFilterDef>(line)->compile());
    };
    const auto fromStrings = [] {
        const auto made = PatternFilterDef::filterDefsFromStrings(plainLines(), PatternFilterDef::itemEnvironment());
        g_sink = g_sink + static_cast<std::size_t>(made.size());
    };
    return {{"peer: split and fnmatch", peer},
            {"compile", compile},
            {"make and compile", makeAndCompile},
            {"filterDefsFromStrings", fromStrings}};
}

void printTimes()
{
    std::vector<Case> all = cases();
    for (int round = 0; round < kRounds; ++round)
        for (Case& each : all)
            each.samples.push_back(timeOf([&each] {
                for (int i = 0; i < kRepeats; ++i)
                    each.workOnAllLines();
            }));
    const double lines = static_cast<double>(plainLines().size()) * kRepeats;
    const double peer = median(all.front().samples);
    std::printf("%-28s %10s %14s %8s\n", "a plain glob line", "ns", "lines/s", "ratio");
    for (const Case& each : all) {
        const double time = median(each.samples);
        std::printf("%-28s %10.0f %14.0f %8.2f\n", each.name, time / lines, lines / time * 1e9, time / peer);
    }
}

void printMemory()
{
    constexpr int kCount = 6'000;
    std::vector<PatternFilterDefPtr> definitions;
    definitions.reserve(kCount);
    const std::size_t before = ::mallinfo2().uordblks;
    for (int i = 0; i < kCount; ++i) { // each with a text of its own, as when they are read from a file
        const QString line = QString(plainLines()[i % plainLines().size()]).append(u'x');
        definitions.push_back(PatternFilterDef::filterDefFromString(line, PatternFilterDef::itemEnvironment()));
    }
    std::printf("\n%-28s %10zu bytes\n", "a definition", (::mallinfo2().uordblks - before) / kCount);
}

/// The time that a line of \p count times \p unit takes.
double timeOfLongLine(const char* unit, qsizetype count)
{
    const QString line = QString::fromLatin1(unit).repeated(count);
    std::vector<double> samples;
    for (int round = 0; round < kLongRounds; ++round)
        samples.push_back(
            timeOf([&line] { g_sink = g_sink + static_cast<std::size_t>(PatternFilterDef(line).compile()); }));
    return median(samples);
}

void printLongLines()
{
    constexpr qsizetype kCount = 1 << 17; // the longest line has a megabyte
    std::printf("\n%-28s %10s %14s %8s\n", "repeated", "times", "ms", "doubled");
    for (const char* unit : {"/", "//a", "a/", ":", "5", "a", "[", "//[", "//*["}) {
        const double once = timeOfLongLine(unit, kCount);
        const double twice = timeOfLongLine(unit, 2 * kCount);
        std::printf("%-28s %10d %14.2f %8.2f\n", unit, static_cast<int>(2 * kCount), twice / 1e6, twice / once);
    }
}

} // namespace
} // namespace havrel

int main()
{
    std::setlocale(LC_ALL, "C.UTF-8");
    havrel::printTimes();
    havrel::printMemory();
    havrel::printLongLines();
}
