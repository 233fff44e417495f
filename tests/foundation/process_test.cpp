// SPDX-License-Identifier: MIT
#include "foundation/process.h"

#include "platform/os_release.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_identity.h"
#include "tests/support/forked_child.h"
#include "tests/support/recording_logr.h"
#include "tests/support/temporary_tree.h"

#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace havrel {
namespace {

using Ids = FakeIdentity::Ids;

/// Captures what a fake tells now, and what is real again when the test is over.
class ProcessTest : public ::testing::Test
{
protected:
    void TearDown() override { Process::captureNow(); }
};

using ProcessOnHost = ProcessTest;
using ProcessIdentity = ProcessTest;
using ProcessProtection = ProcessTest;

TEST_F(ProcessOnHost, QueuesOneThingMoreThanItHasProcessorsBelowFive)
{
    FakeHost host;
    constexpr std::array<std::pair<int, int>, 5> kSizes{{{1, 2}, {2, 3}, {4, 5}, {5, 5}, {8, 8}}};
    for (const auto& [processors, size] : kSizes) {
        host.processors = processors;
        EXPECT_EQ(Process::cpuCount(), processors);
        EXPECT_EQ(Process::optimalConcurrentQueueSize(), size);
    }
}

TEST_F(ProcessOnHost, TellsTheTimeSinceBootInSeconds)
{
    FakeHost host;
    host.uptime = std::chrono::milliseconds(1500);

    EXPECT_DOUBLE_EQ(Process::upTimeInterval().count(), 1.5);
}

TEST_F(ProcessOnHost, EndsWhenTheTimeSinceBootCannotBeRead)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            qputenv("QT_LOGGING_TO_CONSOLE", "1");
            FakeHost host;
            host.uptime.reset();
            (void)Process::upTimeInterval();
        },
        R"(result == noErr.*\+\[Process upTimeInterval\].*Process, line 231)");
}

TEST_F(ProcessOnHost, NamesADistributionAndItsKernel)
{
    const FakeHost host;
    Process::captureNow();

    EXPECT_EQ(Process::osVersion(), 0x60100U);
    EXPECT_EQ(Process::readableOSVersion(), QStringLiteral("Debian GNU/Linux 12 (bookworm), Linux 6.1.0-18-amd64"));
    EXPECT_EQ(Process::osNickname(), QStringLiteral("Bookworm"));
}

TEST_F(ProcessOnHost, NamesTheKernelAloneWithoutADistribution)
{
    FakeHost host;
    host.distribution.clear();
    Process::captureNow();

    EXPECT_EQ(Process::readableOSVersion(), QStringLiteral("Linux 6.1.0-18-amd64"));
    EXPECT_EQ(Process::osNickname(), QStringLiteral("Unknown"));
}

TEST_F(ProcessOnHost, HasVersionNothingWhereThereIsNone)
{
    FakeHost host;
    host.kernel.clear();
    Process::captureNow();

    EXPECT_EQ(Process::osVersion(), 0U);
}

TEST_F(ProcessOnHost, NamesAReleaseByTheTablesWhereReleasesHaveNames)
{
    FakeHost host;
    host.name = "Named";
    host.kernel = "10.11.6";
    Process::captureNow();

    EXPECT_EQ(Process::osVersion(), 0xA0B06U);
    EXPECT_EQ(Process::readableOSVersion(), QStringLiteral("OS X 10.11.6"));
    EXPECT_EQ(Process::osNickname(), QStringLiteral("El Capitan"));
    host.kernel = "10.12.0";
    Process::captureNow();
    EXPECT_EQ(Process::readableOSVersion(), QStringLiteral("macOS 10.12.0"));
}

TEST_F(ProcessOnHost, TellsOfTheRunningSystemWhatItsFilesTell)
{
    const auto release = platform::parseOSRelease(platform::host().osRelease());

    EXPECT_TRUE(Process::readableOSVersion().endsWith(QStringLiteral("Linux ") +
                                                      QString::fromUtf8(platform::host().release())));
    EXPECT_TRUE(Process::readableOSVersion().startsWith(release.value("PRETTY_NAME")));
    EXPECT_EQ(Process::osNickname().toLower(), release.value("VERSION_CODENAME", QStringLiteral("unknown")).toLower());
}

TEST_F(ProcessOnHost, IsWithinARangeOfVersionsFromTheFirstUpToTheEnd)
{
    const FakeHost host;
    Process::captureNow();

    EXPECT_TRUE(Process::isOrLaterThanOSVersion(0x60100, 0x60101));
    EXPECT_TRUE(Process::isOrLaterThanOSVersion(0, 0xFFFFFFFF));
    EXPECT_FALSE(Process::isOrLaterThanOSVersion(0x60101, 0x70000));
    EXPECT_FALSE(Process::isOrLaterThanOSVersion(0x50000, 0x60100)) << "the end is not within";
    EXPECT_FALSE(Process::isOrLaterThanOSVersion(0x60200, 0x60000));
}

TEST_F(ProcessOnHost, OffersWhatOldReleasesBroughtAlways)
{
    FakeHost host;
    host.name = "Named";
    host.kernel = "10.0.0";
    Process::captureNow();

    EXPECT_TRUE(Process::isTigerOrLater());
    EXPECT_TRUE(Process::isLeopardOrLater());
    EXPECT_TRUE(Process::isSnowLeopardOrLater());
    EXPECT_TRUE(Process::isLionOrLater());
    EXPECT_TRUE(Process::isMountainLionOrLater());
    EXPECT_TRUE(Process::isMavericksOrLater());
    EXPECT_TRUE(Process::isYosemiteOrLater());
    EXPECT_TRUE(Process::isElCapitanOrLater());
    EXPECT_TRUE(Process::isSierraOrLater());
    EXPECT_TRUE(Process::isHighSierraOrLater());
}

struct FlagCase
{
    const char* name;
    const char* before; // the last release without it
    const char* from;   // the first one with it
    bool (*flag)();
};

TEST_F(ProcessOnHost, OffersWhatNewerReleasesBroughtFromThoseOnAndOnLinux)
{
    constexpr auto kFlags = std::to_array<FlagCase>({
        {"Mojave", "10.13.255", "10.14.0", Process::isMojaveOrLater},
        {"Catalina", "10.14.255", "10.15.0", Process::isCatalinaOrLater},
        {"Big Sur", "10.255.255", "11.0.0", Process::isBigSurOrLater},
        {"Monterey", "11.255.255", "12.0.0", Process::isMontereyOrLater},
        {"Ventura", "12.255.255", "13.0.0", Process::isVenturaOrLater},
        {"Sonoma", "13.255.255", "14.0.0", Process::isSonomaOrLater},
    });
    for (const FlagCase& each : kFlags) {
        FakeHost host;
        Process::captureNow();
        EXPECT_TRUE(each.flag()) << each.name << " on Linux";
        host.name = "Named";
        host.kernel = each.before;
        EXPECT_TRUE(each.flag()) << each.name << " is captured";
        Process::captureNow();
        EXPECT_FALSE(each.flag()) << each.name;
        host.kernel = each.from;
        Process::captureNow();
        EXPECT_TRUE(each.flag()) << each.name;
    }
}

TEST_F(ProcessIdentity, IsPrivilegedByTheRealUser)
{
    {
        const FakeIdentity dropped(Ids{0, 1000, 0}, Ids{0, 0, 0});
        EXPECT_TRUE(Process::isPrivileged());
    }
    {
        const FakeIdentity raised(Ids{1000, 0, 0}, Ids{1000, 0, 0});
        EXPECT_FALSE(Process::isPrivileged());
    }
}

TEST_F(ProcessIdentity, KeepsTheIdsThatWereCaptured)
{
    FakeIdentity identity(Ids{0, 1000, 0}, Ids{0, 1001, 0});
    Process::captureNow();

    EXPECT_EQ(Process::userID(), 1000U);
    EXPECT_EQ(Process::groupID(), 1001U);
    EXPECT_TRUE(Process::isRunningAsUser());
    EXPECT_FALSE(Process::isRunningAsRoot());
    EXPECT_EQ(identity.setEffectiveUser(0), 0);
    EXPECT_EQ(Process::userID(), 1000U);
    EXPECT_FALSE(Process::isRunningAsUser());
    EXPECT_TRUE(Process::isRunningAsRoot());
}

TEST_F(ProcessIdentity, RunsAsRootAndBackWhenTheRealUserIsRoot)
{
    FakeIdentity identity(Ids{0, 1000, 0}, Ids{5, 1001, 5});
    Process::captureNow();

    EXPECT_TRUE(Process::runAsRoot());
    EXPECT_EQ(identity.effectiveUser(), 0U);
    EXPECT_EQ(identity.effectiveGroup(), 5U) << "the real group";
    EXPECT_TRUE(Process::runAsUser());
    EXPECT_EQ(identity.effectiveUser(), 1000U);
    EXPECT_EQ(identity.effectiveGroup(), 1001U) << "root's group is given up, too";
}

TEST_F(ProcessIdentity, TakesRootFirstAndGivesItUpLast)
{
    using Changes = std::vector<std::string>;
    FakeIdentity identity(Ids{0, 1000, 0}, Ids{5, 1001, 7});
    Process::captureNow();

    EXPECT_TRUE(Process::runAsRoot());
    EXPECT_EQ(std::exchange(identity.changes, {}), (Changes{"user 0", "group 5"}));
    EXPECT_TRUE(Process::runAsUser());
    EXPECT_EQ(identity.changes, (Changes{"group 1001", "user 1000"}));
}

TEST_F(ProcessIdentity, SaysWhenItCouldNotGiveUpRoot)
{
    FakeIdentity identity(Ids{0, 1000, 0}, Ids{0, 1001, 0});
    Process::captureNow();
    ASSERT_TRUE(Process::runAsRoot());
    identity.refusal = EINVAL;

    EXPECT_FALSE(Process::runAsUser());

    EXPECT_TRUE(Process::isRunningAsRoot());
    identity.refusal = 0;
    EXPECT_TRUE(Process::runAsUser());
}

TEST_F(ProcessIdentity, CannotRunAsRootWhenTheRealUserIsAnother)
{
    FakeIdentity identity(Ids{1000, 1000, 1000}, Ids{1000, 1000, 1000});
    Process::captureNow();

    EXPECT_FALSE(Process::runAsRoot());
    EXPECT_EQ(identity.effectiveUser(), 1000U);
    EXPECT_TRUE(Process::runAsUser());
}

TEST_F(ProcessIdentity, ChangesNothingWhenAlreadyThatUser)
{
    FakeIdentity identity(Ids{0, 0, 0}, Ids{0, 0, 0});
    Process::captureNow();

    EXPECT_TRUE(Process::runAsRoot());
    EXPECT_TRUE(Process::runAsUser()) << "started as root";
    EXPECT_TRUE(identity.changes.empty());
    EXPECT_EQ(identity.effectiveUser(), 0U);
}

TEST_F(ProcessIdentity, ChangesNothingAsUserWhenNotRoot)
{
    FakeIdentity identity(Ids{0, 1000, 0}, Ids{0, 1000, 0});
    Process::captureNow();
    EXPECT_EQ(identity.setEffectiveUser(0), 0);
    EXPECT_EQ(identity.setEffectiveUser(2000), 0);
    identity.changes.clear();

    EXPECT_TRUE(Process::runAsUser()) << "not root, though not the captured user either";
    EXPECT_TRUE(identity.changes.empty());
}

TEST_F(ProcessIdentity, LeavesTheIdentityAloneWhenRootIsAllowed)
{
    FakeIdentity identity(Ids{0, 1000, 0}, Ids{0, 1000, 0});
    Process::captureNow();
    Process::setAllowRootUser(true);
    Process::setAllowRootUser(false);

    EXPECT_TRUE(identity.changes.empty());
    EXPECT_TRUE(Process::runAsRoot());
}

TEST_F(ProcessIdentity, GivesUpAndTakesBackThePrivilegesOfTheRealProcess)
{
    if (::getuid() != 0)
        GTEST_SKIP() << "needs root: only a real user that is root can run as root again";
    constexpr uid_t kOther = 65534;
    const int failedStep = resultInForkedChild([] {
        if (::setegid(kOther) != 0 || ::seteuid(kOther) != 0)
            return 1;
        Process::captureNow();
        if (Process::userID() != kOther || Process::groupID() != kOther || !Process::isPrivileged())
            return 2;
        if (!Process::runAsRoot() || ::geteuid() != 0 || ::getegid() != ::getgid())
            return 3;
        if (!Process::runAsUser() || ::geteuid() != kOther || ::getegid() != kOther)
            return 4;
        return 0;
    });

    EXPECT_EQ(failedStep, 0);
}

TEST_F(ProcessIdentity, StaysAnOrdinaryUserWhenTheRealProcessIsOne)
{
    constexpr uid_t kOther = 65534;
    const int failedStep = resultInForkedChild([] {
        if (::geteuid() == 0 && (::setresgid(kOther, kOther, kOther) != 0 || ::setresuid(kOther, kOther, kOther) != 0))
            return 1;
        Process::captureNow();
        const uid_t user = ::geteuid();
        return Process::runAsRoot() || ::geteuid() != user || !Process::runAsUser() ? 2 : 0;
    });

    EXPECT_EQ(failedStep, 0);
}

/// A shell script with the given body that stands for the protection tool.
class ProtectionTool
{
public:
    explicit ProtectionTool(const std::string& body)
    {
        std::ofstream(path()) << "#!/bin/sh\n" << body;
        std::filesystem::permissions(path(), std::filesystem::perms::owner_all);
        Process::setProtectionTool(QString::fromStdString(path()));
        Process::captureNow();
    }
    [[nodiscard]] std::string path() const { return m_tree.path("tool"); }

private:
    TemporaryTree m_tree;
};

TEST_F(ProcessProtection, IsWhatTheFirstLineOfTheToolSays)
{
    const auto kCases = std::to_array<std::pair<const char*, bool>>({
        {"echo 'System Integrity Protection status: enabled.'", true},
        {"echo; echo ' status: enabled.'; echo other", true},
        {"echo 'System Integrity Protection status: disabled.'", false},
        {"echo 'status: disabled'; echo 'but this is enabled'", false},
        {"test \"$*\" = status && echo enabled", true},
        {"printf enabled; exit 3", true},
        {"printf 'enabled \\377'", false},
        {"", false},
    });
    for (const auto& [body, expected] : kCases) {
        const ProtectionTool tool(body);
        EXPECT_EQ(Process::isSIPEnabled(), expected) << body;
    }
}

TEST_F(ProcessProtection, IsAskedForOnce)
{
    const ProtectionTool tool("echo run >> \"$0.runs\"; echo enabled");
    EXPECT_TRUE(Process::isSIPEnabled());
    std::filesystem::remove(tool.path());
    EXPECT_TRUE(Process::isSIPEnabled());

    QFile runs(QString::fromStdString(tool.path() + ".runs"));
    ASSERT_TRUE(runs.open(QIODevice::ReadOnly));
    EXPECT_EQ(runs.readAll(), "run\n");
}

TEST_F(ProcessProtection, IsNoWithoutATool)
{
    const TemporaryTree tree;
    Process::setProtectionTool(QString::fromStdString(tree.path("missing")));
    Process::captureNow();

    EXPECT_FALSE(Process::isSIPEnabled());
}

TEST_F(ProcessProtection, WritesTheAnswerAndTheLinesOfTheToolToTheLog)
{
    const auto logger = std::make_shared<tests::RecordingLogr>();
    const tests::SharedLoggerScope scope(logger);
    const ProtectionTool tool("echo enabled; echo; echo second");

    EXPECT_TRUE(Process::isSIPEnabled());
    const QString log = logger->lines().join(u'\n');
    EXPECT_TRUE(log.contains(QStringLiteral(" #debug# +[Process isSIPEnabled] SIP status=YES ["))) << log.toStdString();
    EXPECT_TRUE(log.contains(QString::fromStdString(" #debug# " + tool.path()))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("enabled"))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("second"))) << log.toStdString();
}

TEST_F(ProcessProtection, WritesNoToTheLogWithoutATool)
{
    const auto logger = std::make_shared<tests::RecordingLogr>();
    const tests::SharedLoggerScope scope(logger);
    const TemporaryTree tree;
    Process::setProtectionTool(QString::fromStdString(tree.path("missing")));
    Process::captureNow();

    EXPECT_FALSE(Process::isSIPEnabled());
    EXPECT_TRUE(logger->lines().join(u'\n').contains(QStringLiteral("+[Process isSIPEnabled] SIP status=NO [")));
}

} // namespace
} // namespace havrel
