// SPDX-License-Identifier: MIT
#include "platform/mount_table.h"

#include "tests/support/mount_line.h"
#include "tests/support/mounted_folder.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace havrel::platform {
namespace {

using namespace havrel::tests;

MountEntry onlyEntry(const QByteArray& line)
{
    const auto entries = parseMountTable(line);
    EXPECT_EQ(entries.size(), 1U) << line.constData();
    return entries.empty() ? MountEntry() : entries.front();
}

struct Row
{
    const char* line;
    const char *mountPoint, *type, *source, *superOptions;
};

TEST(MountTable, TakesRowsAsTheKernelWritesThem)
{
    for (const Row& row : {
             Row{"27 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard", "/", "ext4", "/dev/vda", "rw,discard"},
             Row{"27 1 8:1 / / rw shared:1 - ext4 /dev/sda1 rw", "/", "ext4", "/dev/sda1", "rw"},
             Row{"27 1 8:1 / /a rw shared:1 master:2 propagate_from:3 unbindable - xfs /dev/b rw",
                 "/a",
                 "xfs",
                 "/dev/b",
                 "rw"},
             Row{"27 1 0:9 / /a\\040b\\011c\\012d\\134e\\043 rw - tmpfs a\\040b rw",
                 "/a b\tc\nd\\e#",
                 "tmpfs",
                 "a b",
                 "rw"},
             Row{"27 1 0:9 / /a\\04x\\999\\4 rw - tmpfs none rw", "/a\\04x\\999\\4", "tmpfs", "none", "rw"},
             Row{"27 1 0:9 / /\xFF\xC3 rw - fuse.sshfs h:/\xFF rw", "/\xFF\xC3", "fuse.sshfs", "h:/\xFF", "rw"},
             Row{"27 1 0:9 / /a rw - tmpfs  rw,size=1k", "/a", "tmpfs", "", "rw,size=1k"}, // mounted from nothing
             Row{"27 1 0:9 / /- rw - tmpfs - rw", "/-", "tmpfs", "-", "rw"},
             Row{"27 1 0:9 / /a rw - tmpfs none", "/a", "tmpfs", "none", ""},
         }) {
        const MountEntry entry = onlyEntry(row.line);
        EXPECT_EQ(entry.mountPoint, row.mountPoint) << row.line;
        EXPECT_EQ(entry.type, row.type) << row.line;
        EXPECT_EQ(entry.source, row.source) << row.line;
        EXPECT_EQ(entry.superOptions, row.superOptions) << row.line;
    }
}

TEST(MountTable, TakesTheNumbersAndTheBoundPart)
{
    const MountEntry entry = onlyEntry("18446744073709551615 12 259:4294967295 /a\\040b /c ro,noexec - ext4 /dev/x rw");
    EXPECT_EQ(entry.id, 18446744073709551615U);
    EXPECT_EQ(entry.parent, 12U);
    EXPECT_EQ(entry.major, 259U);
    EXPECT_EQ(entry.minor, 4294967295U);
    EXPECT_EQ(entry.root, "/a b");
    EXPECT_EQ(entry.options, "ro,noexec");
}

TEST(MountTable, LeavesOutWhatIsNoRow)
{
    for (const char* line : {"",
                             "\n\n",
                             "words that mean nothing",
                             "27",
                             "27 1 0:9 / /a rw",
                             "27 1 0:9 / /a rw -",
                             "27 1 0:9 / /a rw shared:1",
                             "27 1 09 / /a rw - tmpfs none rw",
                             "27 1 0: / /a rw - tmpfs none rw",
                             "27 1 0:9 /  rw - tmpfs none rw",
                             "-1 1 0:9 / /a rw - tmpfs none rw",
                             "x 1 0:9 / /a rw - tmpfs none rw",
                             "27 x 0:9 / /a rw - tmpfs none rw"})
        EXPECT_TRUE(parseMountTable(line).empty()) << line;
    EXPECT_EQ(parseMountTable("nothing\n27 1 0:9 / /a rw - tmpfs none rw\nnothing").size(), 1U);
}

TEST(MountTable, ComesBackFromItsText)
{
    const MountEntry entry{7, 6, 8, 1, "/ r", "/a\\ \t\n#\xFE", "rw,x=\\134", "fuse.a b", "s o", "rw,\\040"};
    EXPECT_EQ(onlyEntry(mountLine(entry)), entry);
    EXPECT_EQ(onlyEntry(mountLine(entry, "shared:1 master:2")), entry);
}

/// A mount with its id, its parent's, and its place.
MountEntry mount(std::uint64_t id, std::uint64_t parent, const char* place)
{
    return {id, parent, 0, 0, "/", place, "rw", "tmpfs", "none", "rw"};
}

struct Covering
{
    std::vector<MountEntry> table;
    std::set<std::uint64_t> uncovered;
};

TEST(MountTable, LeavesOutMountsThatOthersCover)
{
    const std::vector<Covering> cases{
        {{}, {}},
        {{mount(1, 0, "/")}, {1}},
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 2, "/a/b"), mount(4, 1, "/c")}, {1, 2, 3, 4}},
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 2, "/a")}, {1, 3}},                      // on top of it
        {{mount(1, 0, "/"), mount(3, 2, "/a"), mount(2, 1, "/a")}, {1, 3}},                      // whatever the order
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 2, "/a/b"), mount(4, 2, "/a")}, {1, 4}}, // on what carries it
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 2, "/a"), mount(4, 3, "/a/b")}, {1, 3, 4}},
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 1, "/ab"), mount(4, 1, "/a b")}, {1, 2, 3, 4}},
        {{mount(1, 0, "/"), mount(2, 1, "/"), mount(3, 2, "/a"), mount(4, 1, "/b")}, {2, 3}}, // on the root
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 2, "/a/b"), mount(4, 2, "/a"), mount(5, 4, "/a/b")},
         {1, 4, 5}},                                                        // on the same place of another mount
        {{mount(1, 0, "/"), mount(2, 1, "/a"), mount(3, 1, "/a")}, {1, 3}}, // the later of two on one place
        {{mount(1, 2, "/a"), mount(2, 1, "/b")}, {1, 2}},                   // a circle, which no kernel writes
    };
    for (const Covering& each : cases) {
        std::set<std::uint64_t> uncovered;
        for (const MountEntry& entry : uncoveredMounts(each.table))
            uncovered.insert(entry.id);
        EXPECT_EQ(uncovered, each.uncovered);
    }
}

TEST(MountTable, FindsOptionsAsWholeWords)
{
    EXPECT_FALSE(hasMountOption(onlyEntry("7 6 0:8 / /a rw - overlay none rw,lowerdir=/x\\054ro").superOptions, "ro"));
    EXPECT_TRUE(hasMountOption("ro", "ro"));
    EXPECT_TRUE(hasMountOption("rw,ro", "ro"));
    EXPECT_TRUE(hasMountOption("ro,noexec", "ro"));
    EXPECT_FALSE(hasMountOption("errors=remount-ro,rox", "ro"));
    EXPECT_FALSE(hasMountOption("", "ro"));
    EXPECT_FALSE(hasMountOption("r,o", "ro"));
}

TEST(MountTable, KnowsWhichMountPointsAreHidden)
{
    EXPECT_EQ(hiddenMountPoints("SRC=/dev/a TARGET=/a\\040b ROOT=/ OPTS=uhelper=x,x-gvfs-hide\n"
                                "SRC=/dev/b TARGET=/b ROOT=/ OPTS=x-gvfs-hidden,x-gvfs-show\n"
                                "TARGET=/c ROOT=/ OPTS=x-gdu.hide\n"
                                "TARGET=/d ROOT=/ ATTRS=\n"
                                "OPTS=x-gvfs-hide TARGET=/e\n"
                                "OPTS=x-gvfs-hide\n\nx"),
              (QByteArrayList{"/a b", "/c", "/e"}));
    EXPECT_TRUE(hiddenMountPoints("").isEmpty());
}

TEST(MountTable, IsThatOfThisProcess)
{
    const MountTable table = readMountTable();
    EXPECT_EQ(table.openError, 0);
    EXPECT_EQ(table.readError, 0);
    EXPECT_TRUE(std::any_of(
        table.entries.begin(), table.entries.end(), [](const MountEntry& each) { return each.mountPoint == "/proc"; }));
}

TEST(MountTable, HoldsMountPointsOfAnyBytes)
{
    const TemporaryTree tree;
    const QByteArray name("a b\tc\nd\\e#\xFF\xC3");
    tree.add(name.toStdString() + '/');
    const MountedFolder mounted("tmpfs", tree.bytes(name.toStdString()), "size=64k");
    HAVREL_NEEDS_MOUNTED(mounted);
    const auto entries = readMountTable().entries;
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const MountEntry& each) {
        return each.mountPoint == tree.bytes(name.toStdString());
    });
    ASSERT_NE(found, entries.end());
    EXPECT_EQ(found->source, "havrel-test");
}

TEST(MountTable, SaysWhetherItCouldNotBeOpenedOrRead)
{
    ReplacedItemCalls calls;
    calls->pread = failing(EIO);
    EXPECT_EQ(readMountTable().openError, 0);
    EXPECT_EQ(readMountTable().readError, EIO);
    calls->openat = failing(EACCES);
    EXPECT_EQ(readMountTable().openError, EACCES);
    EXPECT_EQ(readMountTable().readError, 0);
}

TEST(MountTable, IsReadWholeHoweverLittleComesAtATime)
{
    const auto whole = readMountTable().entries;
    ReplacedItemCalls calls;
    calls->pread = [](int file, void* buffer, std::size_t, off_t offset) {
        return platform::systemItemCalls().pread(file, buffer, 7, offset);
    };
    EXPECT_EQ(readMountTable().entries, whole);
}

} // namespace
} // namespace havrel::platform
