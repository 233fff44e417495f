// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

#include <sys/stat.h>
#include <sys/types.h>

struct statfs;

namespace havrel::platform {

/// The system calls that operations on items are made of, with the arguments, results and errno of the calls
/// themselves. A test puts others in their place to see what a full disk, another volume or a vanished item does.
///
/// Threads: any thread, as long as nobody replaces a call.
struct ItemCalls
{
    std::function<int(const char* from, const char* to)> rename;
    /// By path, not relative to descriptors.
    std::function<int(const char* from, const char* to, unsigned flags)> renameat2;
    std::function<char*(const char* path, char* resolved)> realpath;
    std::function<ssize_t(const char* path, char* buffer, std::size_t size)> readlink;
    std::function<int(const char* path, struct stat* status)> stat;
    std::function<int(const char* path, struct stat* status)> lstat;
    std::function<int(const char* path, struct ::statfs* statistics)> statfs;
    std::function<int(int folder, const char* path, int flags, unsigned mask, struct statx* status)> statx;
    std::function<long(const char* path, int name)> pathconf;
    std::function<int(const char* mountPoint, int flags)> umount2;

    std::function<int(int folder, const char* name, int flags, mode_t mode)> openat;
    std::function<int(int folder, const char* name, struct stat* status, int flags)> fstatat;
    std::function<int(int folder, const char* name, int flags)> unlinkat;
    std::function<int(int folder, const char* name, mode_t mode)> mkdirat;
    std::function<ssize_t(int folder, void* buffer, std::size_t size)> getdents64;
    std::function<int(const char* contents, int folder, const char* name)> symlinkat;
    std::function<int(int fromFolder, const char* from, int toFolder, const char* to, int flags)> linkat;
    std::function<int(int folder, const char* name, mode_t mode, dev_t device)> mknodat;
    // NOLINTNEXTLINE(modernize-avoid-c-arrays): as the system declares it
    std::function<int(int folder, const char* name, const struct timespec times[2], int flags)> utimensat;
    std::function<int(int folder, const char* name, uid_t owner, gid_t group, int flags)> fchownat;

    /// ioctl(2) with FS_IOC_GETFLAGS.
    std::function<int(int item, int* flags)> inodeFlags;
    /// ioctl(2) with FICLONE.
    std::function<int(int to, int from)> clone;
    /// From and to given offsets, as many bytes as the kernel likes up to \p size.
    std::function<ssize_t(int from, off_t* fromOffset, int to, off_t* toOffset, std::size_t size)> copyFileRange;
    std::function<ssize_t(int file, void* buffer, std::size_t size, off_t offset)> pread;
    std::function<ssize_t(int file, const void* buffer, std::size_t size, off_t offset)> pwrite;
    std::function<int(int file, off_t size)> ftruncate;
    std::function<int(int file)> syncfs;
    std::function<int(const char* path, mode_t mode)> chmod;
    std::function<int(const char* path, const char* name, const void* value, std::size_t size, int flags)> setxattr;
};

/// The calls in use; the system's own until a test replaces them. There to the very end, because threads may wait for
/// one of them until then.
[[nodiscard]] ItemCalls& itemCalls();

/// The system's own calls.
[[nodiscard]] ItemCalls systemItemCalls();

} // namespace havrel::platform
