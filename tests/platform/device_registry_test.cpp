// SPDX-License-Identifier: MIT
#include "platform/device_registry.h"

#include "tests/support/temporary_tree.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace havrel::platform {
namespace {

/// A tree as the kernel makes it: a disk with two partitions, and an encrypted device on one of them.
class SysfsRegistry : public ::testing::Test
{
protected:
    SysfsRegistry()
    {
        m_tree.add("devices/pci/usb/block/sda/queue/");
        m_tree.add("devices/pci/usb/block/sda/dev");
        m_tree.addLink("devices/pci/usb/block/sda/device", "../..");
        for (const char* partition : {"sda1", "sda2"}) {
            const std::string folder = std::string("devices/pci/usb/block/sda/") + partition;
            m_tree.add(folder + "/partition");
            m_tree.add(folder + "/dev");
            m_tree.add(folder + "/holders/");
        }
        m_tree.add("devices/virtual/block/dm-0/queue/");
        m_tree.add("devices/virtual/block/dm-0/dev");
        m_tree.add("devices/virtual/block/dm-0/slaves/");
        m_tree.addLink("devices/virtual/block/dm-0/slaves/sda2", "../../../../pci/usb/block/sda/sda2");
        m_tree.addLink("devices/pci/usb/block/sda/sda2/holders/dm-0", "../../../../../../virtual/block/dm-0");
        m_tree.add("devices/virtual/block/cciss!c0d0/queue/");
        m_tree.add("devices/virtual/block/cciss!c0d0/dev");
        m_tree.add("class/block/");
        m_tree.addLink("class/block/sda", "../../devices/pci/usb/block/sda");
        m_tree.addLink("class/block/sda1", "../../devices/pci/usb/block/sda/sda1");
        m_tree.addLink("class/block/sda2", "../../devices/pci/usb/block/sda/sda2");
        m_tree.addLink("class/block/dm-0", "../../devices/virtual/block/dm-0");
        m_tree.addLink("class/block/cciss!c0d0", "../../devices/virtual/block/cciss!c0d0");
    }

    static QStringList namesOf(const std::vector<RegistryEntryPtr>& entries)
    {
        QStringList names;
        for (const RegistryEntryPtr& each : entries) {
            const QVariant name = each->property(QStringLiteral("BSD Name"));
            names << (name.isValid() ? name.toString() : QStringLiteral("(no disk)"));
        }
        return names;
    }

    TemporaryTree m_tree;
    SysfsDeviceRegistry m_registry{QByteArray::fromStdString(m_tree.root())};
};

TEST_F(SysfsRegistry, TellsPartitionsFromWholeDisks)
{
    struct Device
    {
        const char* name;
        bool whole;
    };
    for (const Device& device :
         {Device{"sda", true}, Device{"sda1", false}, Device{"dm-0", true}, Device{"cciss/c0d0", true}}) {
        const auto entry = m_registry.entryOfDevice(device.name);
        ASSERT_TRUE(entry) << device.name;
        EXPECT_TRUE(entry->conformsTo(QStringLiteral("IOMedia")));
        EXPECT_FALSE(entry->conformsTo(QStringLiteral("AppleAPFSVolume")));
        EXPECT_EQ(entry->property(QStringLiteral("BSD Name")), QVariant(QString::fromLatin1(device.name)));
        EXPECT_EQ(entry->property(QStringLiteral("Whole")), QVariant(device.whole)) << device.name;
        EXPECT_FALSE(entry->property(QStringLiteral("Role")).isValid());
    }
}

TEST_F(SysfsRegistry, KnowsWhatIsPartOfWhat)
{
    EXPECT_EQ(namesOf(m_registry.entryOfDevice("sda1")->parents()), QStringList{QStringLiteral("sda")});
    EXPECT_EQ(namesOf(m_registry.entryOfDevice("dm-0")->parents()), QStringList{QStringLiteral("sda2")});
    EXPECT_EQ(namesOf(m_registry.entryOfDevice("sda")->children()),
              (QStringList{QStringLiteral("sda1"), QStringLiteral("sda2")}));
    EXPECT_EQ(namesOf(m_registry.entryOfDevice("sda2")->children()), QStringList{QStringLiteral("dm-0")});
}

TEST_F(SysfsRegistry, GoesUpToTheTopOfTheTreeAndNotBeyond)
{
    auto entries = m_registry.entryOfDevice("sda")->parents();
    ASSERT_EQ(entries.size(), 1U) << "what the disk is connected to";
    EXPECT_FALSE(entries[0]->conformsTo(QStringLiteral("IOMedia")));
    EXPECT_TRUE(entries[0]->conformsTo(QStringLiteral("IOService")));
    EXPECT_FALSE(entries[0]->property(QStringLiteral("Whole")).isValid());
    EXPECT_EQ(namesOf(entries[0]->children()), QStringList{QStringLiteral("sda")});
    int levels = 1;
    for (; !(entries = entries[0]->parents()).empty(); ++levels)
        ASSERT_LT(levels, 5);
    EXPECT_EQ(levels, 2) << "usb and pci";
}

TEST_F(SysfsRegistry, KnowsNoOtherNames)
{
    for (const char* name : {"", ".", "..", "sdb", "../class/block/sda", "sda/sda1", "/sda"})
        EXPECT_FALSE(m_registry.entryOfDevice(name)) << name;
    EXPECT_FALSE(m_registry.entryOfDevice(QByteArray("sda\0", 4)));
    EXPECT_FALSE(SysfsDeviceRegistry(m_tree.bytes("missing")).entryOfDevice("sda"));
}

TEST(DeviceName, IsTheKernelsOfABlockDevice)
{
    EXPECT_TRUE(nameOfBlockDevice(::makedev(0, 21)).isEmpty());
    struct stat root;
    ASSERT_EQ(::stat("/", &root), 0);
    if (::major(root.st_dev) == 0)
        GTEST_SKIP() << "the root is on no block device";
    const QByteArray name = nameOfBlockDevice(root.st_dev);
    ASSERT_FALSE(name.isEmpty());
    EXPECT_TRUE(deviceRegistry().entryOfDevice(name));
}

} // namespace
} // namespace havrel::platform
