// SPDX-License-Identifier: MIT
#include "platform/volume_identity.h"

#include "platform/blkid_library.h"
#include "tests/support/file_system_image.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel::platform {
namespace {

TEST(VolumeUUID, ComesBackFromItsText)
{
    const auto uuid = parseVolumeUUID("01234567-89ab-cDEf-0123-456789aBcdeF");
    ASSERT_TRUE(uuid);
    EXPECT_EQ((*uuid)[0], 0x01);
    EXPECT_EQ((*uuid)[6], 0xCD);
    EXPECT_EQ((*uuid)[15], 0xEF);
    EXPECT_EQ(textOfVolumeUUID(*uuid), "01234567-89AB-CDEF-0123-456789ABCDEF");
}

TEST(VolumeUUID, HasSixteenBytesInFiveGroups)
{
    for (const char* text : {"",
                             "1A2B-3C4D",                             // FAT
                             "0123456789ABCDEF",                      // NTFS
                             "2024-01-02-03-04-05-00",                // CD
                             "0123456789abcdef0123456789abcdef",      // no groups
                             "01234567-89ab-cdef-0123-456789abcde",   // too short
                             "01234567-89ab-cdef-0123-456789abcdef0", // too long
                             "0123456-789ab-cdef-0123-456789abcdef",  // other groups
                             "01234567-89ab-cdef-0123-456789abcdeg",
                             "01234567+89ab-cdef-0123-456789abcdef",
                             "00000000-0000-0000-0000-000000000000"})
        EXPECT_FALSE(parseVolumeUUID(text)) << text;
}

TEST(DeviceLink, IsUnescaped)
{
    EXPECT_EQ(unescapedDeviceLink("plain-Name"), "plain-Name");
    EXPECT_EQ(unescapedDeviceLink("A\\x20B\\x2f\\xC3\\xa9"), "A B/\xC3\xA9");
    EXPECT_EQ(unescapedDeviceLink("\\x2"), "\\x2");
    EXPECT_EQ(unescapedDeviceLink("\\x2g\\y20\\"), "\\x2g\\y20\\");
}

TEST(DeviceLink, IsNoneWhereNothingLeadsToTheDevice)
{
    const TemporaryTree tree({"file"});
    tree.addLink("dangling", "nowhere");
    EXPECT_TRUE(linkToDevice(QByteArray::fromStdString(tree.root()), 0).isEmpty());
    EXPECT_TRUE(linkToDevice(tree.bytes("missing"), 0).isEmpty());
}

TEST(DeviceTags, AreReadFromAnImage)
{
    const TemporaryTree tree;
    const QStringList make{QStringLiteral("mkfs.ext4"),
                           QStringLiteral("-q"),
                           QStringLiteral("-F"),
                           QStringLiteral("-L"),
                           QStringLiteral("a label"),
                           QStringLiteral("-U"),
                           QStringLiteral("01234567-89ab-cdef-0123-456789abcdef")};
    if (!tests::makeImage(tree, "image", make, 4 << 20))
        GTEST_SKIP() << "mkfs.ext4 is not installed";
    const DeviceTags tags = tagsOfDevice(tree.bytes("image"));
    EXPECT_EQ(tags.uuid, "01234567-89ab-cdef-0123-456789abcdef");
    EXPECT_EQ(tags.label, "a label");
}

TEST(DeviceTags, OfFatHaveNoUUID)
{
    const TemporaryTree tree;
    if (!tests::makeImage(
            tree, "image", {QStringLiteral("mkfs.vfat"), QStringLiteral("-n"), QStringLiteral("STICK")}, 4 << 20))
        GTEST_SKIP() << "mkfs.vfat is not installed";
    const DeviceTags tags = tagsOfDevice(tree.bytes("image"));
    EXPECT_EQ(tags.uuid.size(), 9);
    EXPECT_FALSE(parseVolumeUUID(tags.uuid));
    EXPECT_EQ(tags.label, "STICK");
}

TEST(DeviceTags, AreNoneOfWhatIsNoFileSystem)
{
    const TemporaryTree tree({"empty"});
    EXPECT_TRUE(tagsOfDevice(tree.bytes("empty")).uuid.isEmpty());
    EXPECT_TRUE(tagsOfDevice(tree.bytes("missing")).uuid.isEmpty());
}

} // namespace
} // namespace havrel::platform
