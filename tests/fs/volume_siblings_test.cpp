// SPDX-License-Identifier: MIT
#include "fs/volume_siblings.h"

#include "foundation/process.h"
#include "fs/volume_info.h"
#include "platform/device_registry.h"
#include "tests/support/fake_host.h"
#include "tests/support/modelled_registry.h"
#include "tests/support/pretended_mount_table.h"
#include "tests/support/recording_logr.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using namespace havrel::tests;

const QString kSystemRole = QStringLiteral("System");
const QString kDataRole = QStringLiteral("Data");

/// A disk with a container, in which volumes of two groups lie.
class SiblingSearchIn : public ::testing::Test
{
protected:
    SiblingSearchIn()
    {
        m_registry.add("disk0", "IOMedia", "", {{"BSD Name", "disk0"}, {"Whole", true}});
        m_registry.add("container", "AppleAPFSContainer", "disk0", {});
        addVolume("preboot", "Preboot", "GROUP-1", {{"BSD Name", "disk1s2"}});
        addVolume("system", "System", "GROUP-1", {{"BSD Name", "disk1s1"}});
        addVolume("other data", "Data", "GROUP-2", {{"BSD Name", "disk1s7"}});
        addVolume("lone", "Data", nullptr, {{"BSD Name", "disk1s8"}});
        m_registry.add("snapshot", "IOMedia", "system", {{"BSD Name", "disk1s1s1"}});
    }

    void addVolume(const char* key, const char* role, const char* group, ModelledProperties properties)
    {
        properties.emplace_back("Role", QStringList{QString::fromLatin1(role)});
        if (group != nullptr)
            properties.emplace_back("VolGroupUUID", group);
        m_registry.add(key, "AppleAPFSVolume", "container", properties);
    }
    /// The data volume of the first group.
    void addData(const ModelledProperties& properties) { addVolume("data", "Data", "GROUP-1", properties); }

    [[nodiscard]] std::optional<QByteArray> dataOf(const char* device) const
    {
        return mountSourceOfSibling(m_registry, {device, QStringLiteral("/here"), kDataRole, kSystemRole});
    }

    ModelledRegistry m_registry;
};

TEST_F(SiblingSearchIn, AGroupFindsTheOtherRole)
{
    addData({{"BSD Name", "disk1s5"}});
    EXPECT_EQ(dataOf("disk1s1"), "/dev/disk1s5");
    EXPECT_EQ(dataOf("disk1s1s1"), "/dev/disk1s5") << "from a snapshot of the volume";
    EXPECT_EQ(mountSourceOfSibling(m_registry, {"disk1s5", {}, kSystemRole, kDataRole}), "/dev/disk1s1");
}

TEST_F(SiblingSearchIn, AGroupPrefersWhatTheVolumeIsMountedFrom)
{
    addData({{"BSD Name", "disk1s5"}, {"VolGroupMntFromName", "/dev/disk1s5@snap"}});
    EXPECT_EQ(dataOf("disk1s1"), "/dev/disk1s5@snap");
}

TEST_F(SiblingSearchIn, AGroupTakesTextsOfAtMost1024Bytes)
{
    addData({{"BSD Name", "disk1s5"}, {"VolGroupMntFromName", QString(1024, u'x')}});
    EXPECT_EQ(dataOf("disk1s1"), QByteArray(1024, 'x'));
    m_registry.set("data", "VolGroupMntFromName", QString(1025, u'x'));
    EXPECT_FALSE(dataOf("disk1s1")) << "and does not fall back to the device";
}

TEST_F(SiblingSearchIn, AGroupEndsAtTheFirstMatchEvenWithoutADevice)
{
    addData({});
    addVolume("second data", "Data", "GROUP-1", {{"BSD Name", "disk1s9"}});
    EXPECT_FALSE(dataOf("disk1s1"));
}

TEST_F(SiblingSearchIn, AVolumeNeedsTheRoleItsGroupAndAnEntry)
{
    addData({{"BSD Name", "disk1s5"}});
    EXPECT_FALSE(dataOf("disk1s2")) << "it has another role";
    EXPECT_FALSE(dataOf("disk1s5")) << "it is the data volume";
    EXPECT_FALSE(dataOf("disk0")) << "no volume";
    EXPECT_FALSE(dataOf("disk9")) << "unknown";
    EXPECT_FALSE(dataOf("")) << "nothing";
    EXPECT_FALSE(mountSourceOfSibling(m_registry, {"disk1s8", {}, kSystemRole, kDataRole})) << "in no group";
    m_registry.set("system", "Role", QVariant());
    EXPECT_FALSE(dataOf("disk1s1")) << "without roles";
}

TEST_F(SiblingSearchIn, AVolumeMayHaveSeveralRoles)
{
    addData({{"BSD Name", "disk1s5"}});
    m_registry.set("system", "Role", QStringList{QStringLiteral("Recovery"), kSystemRole});
    EXPECT_EQ(dataOf("disk1s1"), "/dev/disk1s5");
    m_registry.set("system", "Role", kSystemRole); // no array
    EXPECT_FALSE(dataOf("disk1s1"));
}

TEST_F(SiblingSearchIn, ATreeWithoutAContainerLogs)
{
    m_registry.add("alone",
                   "AppleAPFSVolume",
                   "disk0",
                   {{"BSD Name", "disk2s1"}, {"Role", QStringList{kSystemRole}}, {"VolGroupUUID", "GROUP-3"}});
    const auto logger = std::make_shared<RecordingLogr>();
    const SharedLoggerScope scope(logger);
    EXPECT_FALSE(dataOf("disk2s1"));
    ASSERT_EQ(logger->lines().size(), 1);
    EXPECT_TRUE(logger->lines()[0].contains(
        QStringLiteral(" #debug# -[JNVolumeInfo volumeWithSiblingRole:forPrimaryRole:] failed to find APFS container "
                       "for /here [")))
        << logger->lines()[0].toStdString();
}

TEST_F(SiblingSearchIn, ATreeThatContainsItselfEnds)
{
    m_registry.add("circle", "IOService", "circle", {{"BSD Name", "loop"}});
    EXPECT_FALSE(dataOf("loop"));
    EXPECT_FALSE(wholeDiskOfDevice(m_registry, "loop"));
}

TEST_F(SiblingSearchIn, ATreeLetsNoEntryStay)
{
    addData({{"BSD Name", "disk1s5"}});
    (void)dataOf("disk1s1");
    EXPECT_TRUE(m_registry.nobodyHoldsAnEntry());
}

TEST_F(SiblingSearchIn, ATreeKnowsTheWholeDisk)
{
    m_registry.add("synthesized", "IOMedia", "container", {{"BSD Name", "disk1"}, {"Whole", true}});
    m_registry.add("slice", "IOMedia", "synthesized", {{"BSD Name", "disk1s9"}, {"Whole", false}});
    EXPECT_EQ(wholeDiskOfDevice(m_registry, "disk1s9"), QStringLiteral("disk1")) << "the nearest one";
    EXPECT_EQ(wholeDiskOfDevice(m_registry, "disk1s1"), QStringLiteral("disk0"));
    EXPECT_EQ(wholeDiskOfDevice(m_registry, "disk0"), QStringLiteral("disk0"));
    EXPECT_FALSE(wholeDiskOfDevice(m_registry, "disk7"));
    m_registry.set("disk0", "Whole", QVariant());
    EXPECT_FALSE(wholeDiskOfDevice(m_registry, "disk1s1"));
}

/// Volumes of a group, mounted.
class VolumeGroup : public ::testing::Test
{
protected:
    VolumeGroup()
    {
        m_registry.add("container", "AppleAPFSContainer", "", {});
        m_registry.add("system",
                       "AppleAPFSVolume",
                       "container",
                       {{"BSD Name", "one"}, {"Role", QStringList{kSystemRole}}, {"VolGroupUUID", "GROUP"}});
        m_registry.add("data",
                       "AppleAPFSVolume",
                       "container",
                       {{"BSD Name", "two"}, {"Role", QStringList{kDataRole}}, {"VolGroupUUID", "GROUP"}});
        pretendMountTable(m_calls,
                          m_tree,
                          "1 0 0:1 / " + m_tree.bytes("system") + " rw - tmpfs /dev/one rw\n" + "2 0 0:2 / " +
                              m_tree.bytes("data") + " rw - tmpfs /dev/two rw\n");
        m_calls->statx = [this](int folder, const char* path, int flags, unsigned mask, struct statx* status) {
            const int result = platform::systemItemCalls().statx(folder, path, flags, mask, status);
            status->stx_mnt_id = path == m_tree.path("data") ? 2 : 1;
            return result;
        };
        Process::captureNow();
    }
    ~VolumeGroup() override { Process::captureNow(); }
    Q_DISABLE_COPY_MOVE(VolumeGroup)

    [[nodiscard]] JNVolumeInfoPtr system() const { return JNVolumeInfo::withPath(m_tree.bytes("system")); }
    [[nodiscard]] JNVolumeInfoPtr data() const { return JNVolumeInfo::withPath(m_tree.bytes("data")); }

    TemporaryTree m_tree{"system/", "data/"};
    ReplacedItemCalls m_calls;
    ModelledRegistry m_registry;
    const ReplacedDeviceRegistry m_replaced{m_registry};
};

TEST_F(VolumeGroup, TellsEachVolumeOfTheOther)
{
    ASSERT_TRUE(system()->dataVolumeInfo());
    EXPECT_EQ(system()->dataVolumeInfo()->cPath(), m_tree.bytes("data"));
    EXPECT_EQ(data()->systemVolumeInfo()->cPath(), m_tree.bytes("system"));
    EXPECT_FALSE(data()->dataVolumeInfo());
    EXPECT_FALSE(system()->systemVolumeInfo());
    EXPECT_EQ(system()->volumeWithSiblingRole(kDataRole, kSystemRole)->cDeviceName(), "/dev/two");
}

TEST_F(VolumeGroup, IsSearchedOnceWhatEverComesOfIt)
{
    const auto volume = system();
    const auto found = volume->dataVolumeInfo();
    EXPECT_FALSE(volume->systemVolumeInfo());
    const int questions = m_registry.questions();
    EXPECT_EQ(volume->dataVolumeInfo(), found);
    EXPECT_FALSE(volume->systemVolumeInfo());
    EXPECT_EQ(volume->copy()->dataVolumeInfo(), found) << "a copy keeps it";
    EXPECT_EQ(m_registry.questions(), questions);
}

TEST_F(VolumeGroup, GivesTheUUIDOfTheDataVolumeOnlyWhenThatWasLookedUp)
{
    const auto volume = system();
    const int questions = m_registry.questions();
    EXPECT_FALSE(volume->dataVolumeUUID());
    EXPECT_EQ(m_registry.questions(), questions);
    const auto found = volume->dataVolumeInfo();
    EXPECT_EQ(volume->dataVolumeUUID(), found->syntheticUUID());
    const auto other = data();
    EXPECT_FALSE(other->dataVolumeInfo());
    EXPECT_FALSE(other->dataVolumeUUID()) << "looked up, and none found";
}

TEST_F(VolumeGroup, HasNoVolumeThatIsNotMounted)
{
    m_registry.set("data", "BSD Name", QStringLiteral("three"));
    EXPECT_FALSE(system()->dataVolumeInfo());
}

TEST_F(VolumeGroup, IsNotLookedForOnSystemsBeforeThereWereAny)
{
    FakeHost host;
    host.name = "Named";
    host.kernel = "10.14.255";
    Process::captureNow();
    const int questions = m_registry.questions();
    EXPECT_FALSE(system()->dataVolumeInfo());
    EXPECT_FALSE(data()->systemVolumeInfo());
    EXPECT_EQ(m_registry.questions(), questions) << "the registry is not touched";

    host.kernel = "10.15.0";
    Process::captureNow();
    EXPECT_TRUE(system()->dataVolumeInfo());
}

TEST(JNVolumeInfoHere, HasNoSiblings)
{
    const auto volume = JNVolumeInfo::withPath("/");
    EXPECT_FALSE(volume->dataVolumeInfo());
    EXPECT_FALSE(volume->systemVolumeInfo());
    EXPECT_FALSE(volume->dataVolumeUUID());
}

} // namespace
} // namespace havrel
