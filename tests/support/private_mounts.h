// SPDX-License-Identifier: MIT
#pragma once

#include <sched.h>
#include <sys/mount.h>

namespace havrel::tests {

/// From now on this process sees no mounts that others make, and nobody sees its own. Where that needs rights that it
/// lacks, nobody can make mounts at all, other than root meanwhile.
inline void keepMountsPrivate()
{
    if (::unshare(CLONE_NEWNS) == 0)
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
}

} // namespace havrel::tests
