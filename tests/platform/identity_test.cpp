// SPDX-License-Identifier: MIT
#include "platform/identity.h"

#include "tests/support/forked_child.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr uid_t kOther = 65534;

TEST(Identity, IsTheProcessesOwn)
{
    EXPECT_EQ(identity().realUser(), ::getuid());
    EXPECT_EQ(identity().effectiveUser(), ::geteuid());
    EXPECT_EQ(identity().realGroup(), ::getgid());
    EXPECT_EQ(identity().effectiveGroup(), ::getegid());
}

TEST(Identity, ChangesOnlyTheEffectiveIdsAndComesBack)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root: only root can take on another identity";
    const int failedStep = resultInForkedChild([] {
        Identity& mine = identity();
        if (mine.setEffectiveGroup(kOther) != 0 || mine.effectiveGroup() != kOther || mine.realGroup() != ::getgid())
            return 1;
        if (mine.setEffectiveUser(kOther) != 0 || mine.effectiveUser() != kOther || mine.realUser() != 0)
            return 2;
        if (mine.setEffectiveUser(0) != 0 || mine.effectiveUser() != 0)
            return 3;
        return 0;
    });

    EXPECT_EQ(failedStep, 0);
}

TEST(Identity, AnswersTheErrorWhenAChangeIsRefused)
{
    const int failedStep = resultInForkedChild([] {
        if (::geteuid() == 0 && (::setresgid(kOther, kOther, kOther) != 0 || ::setresuid(kOther, kOther, kOther) != 0))
            return 1;
        const uid_t before = ::geteuid();
        if (identity().setEffectiveUser(before + 1) != EPERM || identity().setEffectiveGroup(::getegid() + 1) != EPERM)
            return 2;
        return identity().effectiveUser() == before ? 0 : 3;
    });

    EXPECT_EQ(failedStep, 0);
}

} // namespace
} // namespace havrel::platform
