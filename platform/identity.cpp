// SPDX-License-Identifier: MIT
#include "platform/identity.h"

#include <atomic>
#include <cerrno>

#include <unistd.h>

namespace havrel::platform {
namespace {

class IdentityOfTheProcess final : public Identity
{
public:
    [[nodiscard]] uid_t realUser() const override { return ::getuid(); }
    [[nodiscard]] uid_t effectiveUser() const override { return ::geteuid(); }
    [[nodiscard]] gid_t realGroup() const override { return ::getgid(); }
    [[nodiscard]] gid_t effectiveGroup() const override { return ::getegid(); }
    int setEffectiveUser(uid_t user) override { return ::seteuid(user) == 0 ? 0 : errno; }
    int setEffectiveGroup(gid_t group) override { return ::setegid(group) == 0 ? 0 : errno; }
};

IdentityOfTheProcess& identityOfTheProcess()
{
    static IdentityOfTheProcess own;
    return own;
}

std::atomic<Identity*> s_identity = nullptr; // null: the process's own

} // namespace

Identity& identity()
{
    Identity* const replacement = s_identity;
    return replacement ? *replacement : identityOfTheProcess();
}

void replaceIdentity(Identity* replacement)
{
    s_identity = replacement;
}

} // namespace havrel::platform
