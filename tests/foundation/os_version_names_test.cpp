// SPDX-License-Identifier: MIT
#include "foundation/os_version_names.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace havrel {
namespace {

struct VersionCase
{
    PackedOSVersion version;
    const char* nickname;
    const char* prefix;
};

void PrintTo(const VersionCase& row, std::ostream* out)
{
    *out << std::hex << row.version;
}

class OSVersionNames : public ::testing::TestWithParam<VersionCase>
{
};

TEST_P(OSVersionNames, AreThoseOfTheNewestReleaseNotNewer)
{
    EXPECT_EQ(nicknameOfOSVersion(GetParam().version).toStdString(), GetParam().nickname);
    EXPECT_EQ(prefixOfOSVersion(GetParam().version).toStdString(), GetParam().prefix);
}

constexpr auto kVersionCases = std::to_array<VersionCase>({
    {0, "Panther (or earlier)", "Mac OS X "},
    {0xA03FF, "Panther (or earlier)", "Mac OS X "},
    {0xA0400, "Tiger", "Mac OS X "},
    {0xA0500, "Leopard", "Mac OS X "},
    {0xA0600, "Snow Leopard", "Mac OS X "},
    {0xA0700, "Lion", "Mac OS X "},
    {0xA07FF, "Lion", "Mac OS X "},
    {0xA0800, "Mountain Lion", "OS X "},
    {0xA0900, "Mavericks", "OS X "},
    {0xA0A00, "Yosemite", "OS X "},
    {0xA0B00, "El Capitan", "OS X "},
    {0xA0B06, "El Capitan", "OS X "},
    {0xA0BFF, "El Capitan", "OS X "},
    {0xA0C00, "Sierra", "macOS "},
    {0xA0D00, "High Sierra", "macOS "},
    {0xA0DFF, "High Sierra", "macOS "},
    {0xA0E00, "Mojave", "macOS "},
    {0xA0E05, "Mojave", "macOS "},
    {0xA0F00, "Catalina", "macOS "},
    {0xAFFFF, "Catalina", "macOS "},
    {0xB0000, "Big Sur", "macOS "},
    {0xC0000, "Monterey", "macOS "},
    {0xD0000, "Ventura", "macOS "},
    {0xE0000, "Sonoma", "macOS "},
    {0xEFFFF, "Sonoma", "macOS "},
    {0xF0000, "Unknown", "macOS "},
    {0xFFFFFFFF, "Unknown", "macOS "},
});

INSTANTIATE_TEST_SUITE_P(Cases, OSVersionNames, ::testing::ValuesIn(kVersionCases));

} // namespace
} // namespace havrel
