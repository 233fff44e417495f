// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/outside_program.h"

#include <QByteArray>

#include <cerrno>
#include <cstring>

#include <sys/mount.h>

namespace havrel::tests {

/// A file system that is mounted on a folder until the object goes. Tests that need one ask first whether it is there.
class MountedFolder
{
public:
    MountedFolder(const char* type, const QByteArray& folder, const char* options)
        : m_folder(folder)
        , m_error(::mount("havrel-test", folder.constData(), type, 0, options) == 0 ? 0 : errno)
    {
    }

    /// The same folder once more, but read-only.
    [[nodiscard]] static MountedFolder readOnly(const QByteArray& folder) { return {folder, bindReadOnly(folder)}; }
    /// The item \p from, a folder or a file, seen at the item \p at as well.
    [[nodiscard]] static MountedFolder bound(const QByteArray& from, const QByteArray& at)
    {
        return {at, ::mount(from.constData(), at.constData(), nullptr, MS_BIND, nullptr) == 0};
    }

    /// An image of a file system, made by \p make and mounted through a loop device.
    MountedFolder(const QByteArray& image, const QByteArray& folder)
        : m_folder(folder)
        , m_error(mountImage(image, folder) ? 0 : EPERM)
    {
    }

    ~MountedFolder()
    {
        if (m_error == 0)
            ::umount2(m_folder.constData(), MNT_DETACH);
    }
    MountedFolder(const MountedFolder&) = delete;
    MountedFolder& operator=(const MountedFolder&) = delete;
    MountedFolder(MountedFolder&&) = delete;
    MountedFolder& operator=(MountedFolder&&) = delete;

    /// 0, or the errno value why nothing is mounted.
    [[nodiscard]] int error() const noexcept { return m_error; }

private:
    MountedFolder(const QByteArray& folder, bool mounted)
        : m_folder(folder)
        , m_error(mounted ? 0 : errno)
    {
    }

    static bool bindReadOnly(const QByteArray& folder)
    {
        const char* path = folder.constData();
        return ::mount(path, path, nullptr, MS_BIND, nullptr) == 0 &&
               ::mount(nullptr, path, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

    static bool mountImage(const QByteArray& image, const QByteArray& folder)
    {
        return QProcess::execute(QStringLiteral("mount"),
                                 {QStringLiteral("-o"),
                                  QStringLiteral("loop"),
                                  QString::fromUtf8(image),
                                  QString::fromUtf8(folder)}) == 0;
    }

    QByteArray m_folder;
    int m_error;
};

} // namespace havrel::tests

/// Skips the test, in words, where nothing can be mounted.
#define HAVREL_NEEDS_MOUNTED(folder)                                                                                   \
    if ((folder).error() != 0)                                                                                         \
    GTEST_SKIP() << "mounting needs root and its capabilities: " << std::strerror((folder).error())
