// SPDX-License-Identifier: MIT
#pragma once

#include "platform/owned_descriptor.h"

#include <QByteArray>

#include <cerrno>

#include <fcntl.h>
#include <sys/mount.h>

namespace havrel::tests {

/// A file system in user space whose program never answers, mounted on a folder until the object goes: every question
/// about it waits as long as that. Tests that need one ask first whether it is there.
class HungMount
{
public:
    explicit HungMount(const QByteArray& folder)
        : m_folder(folder)
        , m_program(::open("/dev/fuse", O_RDWR | O_CLOEXEC))
    {
        const QByteArray options =
            "fd=" + QByteArray::number(m_program.get()) + ",rootmode=40000,user_id=0,group_id=0,allow_other";
        m_error =
            m_program.isOpen() &&
                    ::mount("hung", folder.constData(), "fuse.sshfs", MS_NOSUID | MS_NODEV, options.constData()) == 0
                ? 0
                : errno;
    }
    ~HungMount()
    {
        m_program.reset(); // who waits is told that the program is gone
        if (m_error == 0)
            ::umount2(m_folder.constData(), MNT_DETACH);
    }
    HungMount(const HungMount&) = delete;
    HungMount& operator=(const HungMount&) = delete;
    HungMount(HungMount&&) = delete;
    HungMount& operator=(HungMount&&) = delete;

    /// 0, or the errno value why nothing is mounted.
    [[nodiscard]] int error() const noexcept { return m_error; }

private:
    QByteArray m_folder;
    platform::OwnedDescriptor m_program;
    int m_error = 0;
};

} // namespace havrel::tests
