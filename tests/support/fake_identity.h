// SPDX-License-Identifier: MIT
#pragma once

#include "platform/identity.h"

#include <cerrno>
#include <string>
#include <vector>

namespace havrel {

/// An identity that follows the kernel's rules on made-up ids, in place from construction to destruction; one at a
/// time. What is captured of the identity must be captured anew after both.
///
/// \source seteuid(2), setegid(2): without privileges only the real, the effective and the saved id are allowed
class FakeIdentity final : public platform::Identity
{
public:
    struct Ids
    {
        uid_t real;
        uid_t effective;
        uid_t saved;
    };

    FakeIdentity(Ids user, Ids group)
        : m_user(user)
        , m_group(group)
    {
        platform::replaceIdentity(this);
    }
    ~FakeIdentity() override { platform::replaceIdentity(nullptr); }
    FakeIdentity(const FakeIdentity&) = delete;
    FakeIdentity& operator=(const FakeIdentity&) = delete;
    FakeIdentity(FakeIdentity&&) = delete;
    FakeIdentity& operator=(FakeIdentity&&) = delete;

    uid_t realUser() const override { return m_user.real; }
    uid_t effectiveUser() const override { return m_user.effective; }
    gid_t realGroup() const override { return m_group.real; }
    gid_t effectiveGroup() const override { return m_group.effective; }
    int setEffectiveUser(uid_t user) override { return set("user ", m_user, user); }
    int setEffectiveGroup(gid_t group) override { return set("group ", m_group, group); }

    std::vector<std::string> changes; ///< that were made or refused, in order: "user 0", "group 5"
    int refusal =
        0; ///< errno code of every change, such as EINVAL for ids that the user namespace does not map; 0: none

private:
    int set(const char* what, Ids& ids, uid_t wanted)
    {
        changes.push_back(what + std::to_string(wanted));
        if (refusal != 0)
            return refusal;
        const bool allowed =
            m_user.effective == 0 || wanted == ids.real || wanted == ids.saved || wanted == ids.effective;
        if (!allowed)
            return EPERM;
        ids.effective = wanted;
        return 0;
    }

    Ids m_user;
    Ids m_group;
};

} // namespace havrel
