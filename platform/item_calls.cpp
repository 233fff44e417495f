// SPDX-License-Identifier: MIT
#include "platform/item_calls.h"

#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace havrel::platform {

ItemCalls systemItemCalls()
{
    return {
        .rename = ::rename,
        .renameat2 = [](const char* from,
                        const char* to,
                        unsigned flags) { return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, flags); },
        .realpath = ::realpath,
        .readlink = ::readlink,
        .stat = ::stat,
        .lstat = ::lstat,
        .statfs = ::statfs,
        .statx = ::statx,
        .pathconf = ::pathconf,
        .umount2 = ::umount2,
        .openat =
            [](int folder, const char* name, int flags, mode_t mode) {
                return ::openat(folder, name, flags | O_CLOEXEC, mode);
            },
        .fstatat = ::fstatat,
        .unlinkat = ::unlinkat,
        .mkdirat = ::mkdirat,
        .getdents64 = ::getdents64,
        .symlinkat = ::symlinkat,
        .linkat = ::linkat,
        .mknodat = ::mknodat,
        .utimensat = ::utimensat,
        .fchownat = ::fchownat,
        .inodeFlags = [](int item, int* flags) { return ::ioctl(item, FS_IOC_GETFLAGS, flags); },
        .clone = [](int to, int from) { return ::ioctl(to, FICLONE, from); },
        .copyFileRange =
            [](int from, off_t* fromOffset, int to, off_t* toOffset, std::size_t size) {
                return ::copy_file_range(from, fromOffset, to, toOffset, size, 0);
            },
        .pread = ::pread,
        .pwrite = ::pwrite,
        .ftruncate = ::ftruncate,
        .syncfs = ::syncfs,
        .chmod = ::chmod,
        .setxattr = ::setxattr,
    };
}

ItemCalls& itemCalls()
{
    static auto& s_calls = *new ItemCalls(systemItemCalls()); // NOLINT(cppcoreguidelines-owning-memory)
    return s_calls;
}

} // namespace havrel::platform
