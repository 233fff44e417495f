// SPDX-License-Identifier: MIT
#include "platform/programs.h"

#include "platform/file_contents.h"

#include <QByteArrayList>

#include <algorithm>
#include <array>
#include <climits>
#include <ctime>
#include <memory>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

struct CloseFolder
{
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
};

SystemTime timeOf(const timespec& time)
{
    const auto since = std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    return SystemTime(std::chrono::duration_cast<SystemTime::duration>(since));
}

std::chrono::nanoseconds timeSinceBoot()
{
    timespec time = {};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// The name of a process's program file, as it was when it was started; empty for other users' processes.
QByteArray programOf(const QByteArray& process)
{
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink((process + "/exe").constData(), buffer.data(), buffer.size());
    QByteArray path(buffer.data(), std::max<ssize_t>(length, 0));
    if (path.endsWith(" (deleted)")) // replaced by an upgrade
        path.chop(10);
    return path.mid(path.lastIndexOf('/') + 1);
}

std::optional<SystemTime> beginningOf(const QByteArray& process)
{
    constexpr qsizetype kStartTime = 19; // field 22, counted from the one behind the name, which is the third
    const QByteArray status = readFile(process + "/stat").bytes;
    const QByteArrayList fields = status.mid(status.lastIndexOf(')') + 2).split(' ');
    if (fields.size() <= kStartTime)
        return std::nullopt;
    const auto ticks = std::chrono::nanoseconds(std::chrono::seconds(fields[kStartTime].toLongLong()));
    const auto ago = timeSinceBoot() - ticks / ::sysconf(_SC_CLK_TCK);
    return std::chrono::system_clock::now() - std::chrono::duration_cast<SystemTime::duration>(ago);
}

} // namespace

bool isExecutable(const QByteArray& path)
{
    return ::access(path.constData(), X_OK) == 0;
}

QByteArray programOfName(const QByteArray& name)
{
    for (const QByteArray& folder : qgetenv("PATH").split(':')) {
        const QByteArray path = folder + '/' + name;
        struct stat status = {};
        if (folder.startsWith('/') && ::stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode) &&
            isExecutable(path))
            return path;
    }
    return {};
}

std::optional<SystemTime> beginningOfProgram(const QByteArray& program)
{
    const std::unique_ptr<DIR, CloseFolder> processes(::opendir("/proc"));
    std::optional<SystemTime> oldest;
    while (const dirent* entry = processes && !program.isEmpty() ? ::readdir(processes.get()) : nullptr) {
        const QByteArray process = QByteArray("/proc/") + entry->d_name;
        struct stat status = {};
        const bool isOwn = entry->d_name[0] >= '1' && entry->d_name[0] <= '9' &&
                           ::stat(process.constData(), &status) == 0 && status.st_uid == ::getuid();
        if (!isOwn || programOf(process) != program)
            continue;
        if (const auto beginning = beginningOf(process); beginning && (!oldest || *beginning < *oldest))
            oldest = beginning;
    }
    return oldest;
}

std::optional<SystemTime> changeOfItem(const QByteArray& path)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0)
        return std::nullopt;
    return timeOf(status.st_ctim);
}

} // namespace havrel::platform
