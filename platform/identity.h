// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace havrel::platform {

/// On whose behalf the process runs. A test puts another in place by replaceIdentity.
///
/// Threads: any thread; a change holds for all threads of the process.
class Identity
{
public:
    Identity() = default;
    virtual ~Identity() = default;
    Identity(const Identity&) = delete;
    Identity& operator=(const Identity&) = delete;
    Identity(Identity&&) = delete;
    Identity& operator=(Identity&&) = delete;

    [[nodiscard]] virtual uid_t realUser() const = 0;       ///< \source getuid(2)
    [[nodiscard]] virtual uid_t effectiveUser() const = 0;  ///< \source geteuid(2)
    [[nodiscard]] virtual gid_t realGroup() const = 0;      ///< \source getgid(2)
    [[nodiscard]] virtual gid_t effectiveGroup() const = 0; ///< \source getegid(2)

    /// \return 0, or the errno value with the identity unchanged. \source seteuid(2)
    virtual int setEffectiveUser(uid_t user) = 0;
    /// \return 0, or the errno value with the identity unchanged. \source setegid(2)
    virtual int setEffectiveGroup(gid_t group) = 0;
};

/// The identity in use: the process's own, until a test replaces it.
///
/// Threads: any thread.
[[nodiscard]] Identity& identity();

/// Puts \p replacement in place, which must outlive its use; a null pointer brings the process's own back.
///
/// Threads: one thread at a time, while no other asks the identity.
void replaceIdentity(Identity* replacement);

} // namespace havrel::platform
