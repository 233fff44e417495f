// SPDX-License-Identifier: MIT
#include "cli/attribute_failure.h"

#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace havrel::cli {
namespace {

struct FailureRow
{
    int error;
    AttributeAccess access;
    const char* item;
    const char* text; // null: the system's own
};

constexpr auto kFailures = std::to_array<FailureRow>({
    {E2BIG, AttributeAccess::Write, "file", "the preferences are longer than its file system keeps in an attribute"},
    {ERANGE, AttributeAccess::Write, "file", "the preferences are longer than its file system keeps in an attribute"},
    {EPERM, AttributeAccess::Write, "link", "a symbolic link cannot carry preferences; its target can: file"},
    {EPERM, AttributeAccess::Write, "pipe", "only files and folders can carry preferences"},
    {EPERM,
     AttributeAccess::Write,
     "file",
     "not permitted: it is immutable or append-only, or another user's in a shared folder"},
    {EPERM,
     AttributeAccess::Write,
     "folder",
     "not permitted: it is immutable or append-only, or another user's in a shared folder"},
    {EACCES, AttributeAccess::Read, "file", "no permission to read it"},
    {EACCES, AttributeAccess::Walk, "folder", "no permission to read it"},
    {EACCES,
     AttributeAccess::Write,
     "file",
     "no permission to write it (preferences need write permission, its owner's too)"},
    {ENOSPC, AttributeAccess::Write, "file", "no room left for attributes on this item (its file system is not full)"},
    {ENOTSUP,
     AttributeAccess::Write,
     "file",
     "its file system keeps no attributes, so nothing on it can carry preferences"},
    {EROFS, AttributeAccess::Write, "file", "it is on a read-only file system"},
    {EINVAL, AttributeAccess::Read, "file", "a path cannot hold a NUL"},
    {ESTALE, AttributeAccess::Walk, "folder", "it was moved meanwhile, so that not all of it was looked through"},
    {ESTALE, AttributeAccess::Read, "file", nullptr},
    {ESTALE, AttributeAccess::Write, "file", nullptr},
    {EIO, AttributeAccess::Walk, "folder", nullptr},
});

TEST(AttributeFailureText, SaysWhatAnErrorMeansForPreferences)
{
    TemporaryTree tree;
    tree.add("file");
    tree.add("folder/");
    tree.addLink("link", "file");
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    for (const FailureRow& row : kFailures) {
        const QString text = attributeFailureText(row.error, tree.bytes(row.item), row.access);
        EXPECT_EQ(text.toStdString(), row.text != nullptr ? row.text : std::strerror(row.error));
    }
}

} // namespace
} // namespace havrel::cli
