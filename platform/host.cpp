// SPDX-License-Identifier: MIT
#include "platform/host.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>

#include <sched.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr std::size_t kMostProcessors =
    1U << 20; // far beyond what a kernel is built for; ends the search for a set's size

// NOLINTNEXTLINE(modernize-avoid-c-arrays): the system's own type
QByteArray textOfSystem(const char (utsname::*field)[sizeof(utsname::sysname)])
{
    utsname names{};
    return ::uname(&names) == 0 ? QByteArray(names.*field) : QByteArray();
}

/// Processors in the affinity set; -1 when the set is larger than \p size, 0 on any other failure.
int processorsInSetOf(std::size_t size)
{
    const std::size_t bytes = CPU_ALLOC_SIZE(size);
    cpu_set_t* const set = CPU_ALLOC(size);
    if (set == nullptr)
        return 0;
    const int failure = ::sched_getaffinity(0, bytes, set) == 0 ? 0 : errno;
    const int count = failure == 0 ? CPU_COUNT_S(bytes, set) : 0;
    CPU_FREE(set);
    return failure == EINVAL ? -1 : count;
}

class RunningSystem final : public Host
{
public:
    [[nodiscard]] QByteArray systemName() const override { return textOfSystem(&utsname::sysname); }
    [[nodiscard]] QByteArray release() const override { return textOfSystem(&utsname::release); }
    [[nodiscard]] QByteArray hostName() const override { return textOfSystem(&utsname::nodename); }

    [[nodiscard]] QByteArray osRelease() const override
    {
        for (const auto& path : {QStringLiteral("/etc/os-release"), QStringLiteral("/usr/lib/os-release")}) {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly))
                return file.readAll();
        }
        return {};
    }

    [[nodiscard]] int activeProcessors() const override
    {
        int count = -1;
        for (std::size_t size = CPU_SETSIZE; count < 0 && size <= kMostProcessors; size *= 2)
            count = processorsInSetOf(size);
        return count > 0 ? count : std::max(1, static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN)));
    }

    [[nodiscard]] std::optional<std::chrono::nanoseconds> timeSinceBoot() const override
    {
        timespec time{};
        if (::clock_gettime(CLOCK_BOOTTIME, &time) != 0)
            return std::nullopt;
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }
};

const RunningSystem& runningSystem()
{
    static const RunningSystem system;
    return system;
}

std::atomic<const Host*> s_host = nullptr; // null: the running system

} // namespace

const Host& host()
{
    const Host* const replacement = s_host;
    return replacement ? *replacement : runningSystem();
}

void replaceHost(const Host* replacement)
{
    s_host = replacement;
}

QByteArray architectureName()
{
#if defined(__aarch64__)
    return QByteArrayLiteral("arm64");
#elif defined(__x86_64__)
    return QByteArrayLiteral("x86_64");
#else
    utsname names{};
    return ::uname(&names) == 0 ? QByteArray(names.machine) : QByteArray();
#endif
}

std::uint32_t packedVersionOfRelease(QByteArrayView release)
{
    std::array<std::uint32_t, 3> numbers{};
    constexpr std::array<std::uint32_t, 3> kLargest{0xFFFF, 0xFF, 0xFF};
    std::size_t place = 0;
    bool begun = false; // a digit of the number at place was seen
    for (const char character : release) {
        if (character >= '0' && character <= '9') {
            const std::uint32_t longer = 10 * numbers[place] + static_cast<std::uint32_t>(character - '0');
            numbers[place] = std::min(longer, kLargest[place]);
            begun = true;
        } else if (character == '.' && begun && place + 1 < numbers.size()) {
            ++place;
            begun = false;
        } else {
            break;
        }
    }
    return numbers[0] << 16 | numbers[1] << 8 | numbers[2];
}

} // namespace havrel::platform
