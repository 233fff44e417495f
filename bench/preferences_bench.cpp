// SPDX-License-Identifier: MIT
// What writing, reading and removing the capture preferences of 10,000 items costs, beside the bare system calls on the
// same items. Both take turns in one run; times are wall-clock medians over the rounds, because the kernel's part
// counts.
//
// usage: preferences_bench [FOLDER]     where the items are made and removed; the default is $TMPDIR
#include "filters/capture_preferences_attribute.h"
#include "filters/file_capture_preferences.h"
#include "filters/pattern_filter_def.h"
#include "foundation/property_list.h"
#include "fs/path.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <sys/xattr.h>

namespace havrel {
namespace {

constexpr int kItems = 10'000;
constexpr int kRounds = 11;
constexpr const char* kName = capture_preferences_attribute::kNameOnDisk;

/// A folder with empty files, which goes with its owner.
class ManyItems
{
public:
    explicit ManyItems(const std::filesystem::path& where)
    {
        std::string name = (where / "havrel-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            std::abort();
        m_folder = name;
        for (int i = 0; i < kItems; ++i) {
            const std::filesystem::path path = m_folder / ("item" + std::to_string(i));
            std::ofstream(path).flush();
            m_paths.push_back(QByteArray::fromStdString(path.string()));
        }
    }
    ~ManyItems()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    ManyItems(const ManyItems&) = delete;
    ManyItems& operator=(const ManyItems&) = delete;
    ManyItems(ManyItems&&) = delete;
    ManyItems& operator=(ManyItems&&) = delete;

    [[nodiscard]] const std::vector<QByteArray>& paths() const noexcept { return m_paths; }

private:
    std::filesystem::path m_folder;
    std::vector<QByteArray> m_paths;
};

using Work = std::function<void(const QByteArray& path)>;

double secondsFor(const ManyItems& items, const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    for (const QByteArray& path : items.paths())
        work(path);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> samples)
{
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

struct Times
{
    double bare, ours;
};

void doNothing(const QByteArray& /*path*/) {}

/// \p before puts each item into the state that the work wants, untimed.
Times compare(const ManyItems& items, const Work& bare, const Work& ours, const Work& before = doNothing)
{
    std::array<std::vector<double>, 2> samples;
    for (int round = 0; round < kRounds; ++round) {
        secondsFor(items, before);
        samples[0].push_back(secondsFor(items, bare));
        secondsFor(items, before);
        samples[1].push_back(secondsFor(items, ours));
    }
    return {median(samples[0]), median(samples[1])};
}

void print(const char* kind, const char* what, Times times)
{
    constexpr double kMicroseconds = 1e6 / kItems;
    std::printf("%-22s %-8s bare %6.2f us an item   ours %6.2f us an item   ratio %.2f\n",
                kind,
                what,
                times.bare * kMicroseconds,
                times.ours * kMicroseconds,
                times.ours / times.bare);
}

void bareRead(const QByteArray& path)
{
    std::array<char, capture_preferences_attribute::kMostBytesRead> buffer;
    if (::lgetxattr(path.constData(), kName, buffer.data(), buffer.size()) <= 0)
        std::abort();
}

void ourRead(const QByteArray& path)
{
    if (!FileCapturePreferences::capturePreferencesForPath(*JNPath::withCPath(path)))
        std::abort();
}

void measure(const ManyItems& items, const char* kind, const FileCapturePreferences& preferences)
{
    const QByteArray bytes = binaryPropertyList(preferences.properties()).bytes;
    const auto bareWrite = [&bytes](const QByteArray& path) {
        if (::lsetxattr(path.constData(), kName, bytes.constData(), static_cast<std::size_t>(bytes.size()), 0) != 0)
            std::abort();
    };
    const auto ourWrite = [&preferences](const QByteArray& path) {
        preferences.setPreferencesAtPath(*JNPath::withCPath(path));
    };
    const Times writing = compare(items, bareWrite, ourWrite);
    const Times reading = compare(items, bareRead, ourRead);
    print(kind, "writing", writing);
    print(kind, "reading", reading);
    print(kind, "both", {writing.bare + reading.bare, writing.ours + reading.ours});
}

void bareRemove(const QByteArray& path)
{
    if (::lgetxattr(path.constData(), kName, nullptr, 0) <= 0 || ::lremovexattr(path.constData(), kName) != 0)
        std::abort();
}

void ourRemove(const QByteArray& path)
{
    static const FileCapturePreferences s_nothing;
    s_nothing.setPreferencesAtPath(*JNPath::withCPath(path));
}

void measureRemoving(const ManyItems& items)
{
    const auto write = [](const QByteArray& path) {
        if (::lsetxattr(path.constData(), kName, "any", 3, 0) != 0)
            std::abort();
    };
    print("whatever there is", "removing", compare(items, bareRemove, ourRemove, write));
}

FileCapturePreferences withPatterns(std::initializer_list<const char*> lines)
{
    FileCapturePreferences preferences;
    preferences.option = CaptureOption::ExcludeContents;
    PatternFilterDefs definitions;
    for (const char* line : lines)
        definitions.append(std::make_shared<PatternFilterDef>(QString::fromUtf8(line)));
    preferences.setExcludeFilterDefs(definitions);
    return preferences;
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    using namespace havrel;
    const ManyItems items(argc > 1 ? std::filesystem::path(argv[1]) : std::filesystem::temp_directory_path());
    measure(items, "an option", withPatterns({}));
    measure(items, "and one pattern", withPatterns({"//*.tmp"}));
    measure(items, "and four patterns", withPatterns({"//*.tmp", "Library//Caches*", "//*.o/+", "build//^a+$/:re"}));
    measureRemoving(items);
    return 0;
}
