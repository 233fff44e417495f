// SPDX-License-Identifier: MIT
#include "components/archive_place.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

TEST(ArchivePlace, IsAnAbsoluteFolderOrSomewhereElse)
{
    const std::pair<const char*, const char*> rows[] = {
        {"backup", "/work/backup"},
        {"./backup/", "/work/backup"},
        {"/media/disk", "/media/disk"},
        {"local:backup", "/work/backup"},
        {"local:/media/disk", "/media/disk"},
        {"a:b", "/work/a:b"},
        {"n\xff", "/work/n\xff"},
        {"sftp:user@host:/folder", "sftp:user@host:/folder"},
        {"s3:https://host/bucket", "s3:https://host/bucket"},
        {"rest:https://host/", "rest:https://host/"},
        {"rclone:remote:folder", "rclone:remote:folder"},
        {"./sftp:folder", "/work/sftp:folder"},
    };
    for (const auto& [given, place] : rows)
        EXPECT_EQ(placeOfRepository(given, "/work"), place);
}

} // namespace
} // namespace havrel
