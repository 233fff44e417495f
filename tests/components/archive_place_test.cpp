// SPDX-License-Identifier: MIT
#include "components/archive_place.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

TEST(ArchivePlace, IsAnAbsoluteFolderOrSomewhereElse)
{
    const std::pair<const char*, const char*> rows[] = {
        {"backup", "/home/me/backup"},
        {"./backup/", "/home/me/backup"},
        {"/media/disk", "/media/disk"},
        {"local:backup", "/home/me/backup"},
        {"local:/media/disk", "/media/disk"},
        {"a:b", "/home/me/a:b"},
        {"n\xff", "/home/me/n\xff"},
        {"sftp:user@host:/folder", "sftp:user@host:/folder"},
        {"s3:https://host/bucket", "s3:https://host/bucket"},
        {"rest:https://host/", "rest:https://host/"},
        {"rclone:remote:folder", "rclone:remote:folder"},
        {"./sftp:folder", "/home/me/sftp:folder"},
    };
    for (const auto& [given, place] : rows)
        EXPECT_EQ(placeOfRepository(given, "/home/me"), place);
}

} // namespace
} // namespace havrel
