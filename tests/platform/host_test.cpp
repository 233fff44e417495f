// SPDX-License-Identifier: MIT
#include "platform/host.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

#include <sched.h>
#include <sys/utsname.h>

namespace havrel::platform {
namespace {

struct ReleaseCase
{
    const char* label;
    const char* release;
    std::uint32_t expected;
};

class KernelRelease : public ::testing::TestWithParam<ReleaseCase>
{
};

TEST_P(KernelRelease, PacksIntoOneNumber)
{
    EXPECT_EQ(packedVersionOfRelease(GetParam().release), GetParam().expected);
}

constexpr auto kReleaseCases = std::to_array<ReleaseCase>({
    {"distribution", "6.1.0-18-amd64", 0x60100},
    {"with_patch", "6.1.12-3", 0x6010C},
    {"two_numbers", "4.19", 0x41300},
    {"two_numbers_and_a_suffix", "6.8-rc3", 0x60800},
    {"one_number", "7", 0x70000},
    {"four_numbers", "5.10.198.1", 0x50AC6},
    {"large_patch_is_capped", "4.9.337", 0x409FF},
    {"large_minor_is_capped", "4.256.1", 0x4FF01},
    {"large_major_is_capped", "70000.0.0", 0xFFFF0000},
    {"endless_number", "6.99999999999999999999999.1", 0x6FF01},
    {"dot_without_number", "6..1", 0x60000},
    {"trailing_dot", "6.1.", 0x60100},
    {"no_number", "generic", 0},
    {"sign", "-6.1", 0},
    {"empty", "", 0},
});

INSTANTIATE_TEST_SUITE_P(Cases, KernelRelease, ::testing::ValuesIn(kReleaseCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(Host, TellsWhatTheKernelTells)
{
    utsname names{};
    ASSERT_EQ(::uname(&names), 0);

    EXPECT_EQ(host().systemName(), "Linux");
    EXPECT_EQ(host().release(), names.release);
    EXPECT_EQ(host().hostName(), names.nodename);
    EXPECT_NE(packedVersionOfRelease(host().release()), 0U);
}

TEST(Host, NamesTheArchitectureOfTheProgram)
{
    utsname names{};
    ASSERT_EQ(::uname(&names), 0);
    const QByteArray machine = names.machine;

    EXPECT_EQ(architectureName(), machine == "aarch64" ? QByteArray("arm64") : machine);
}

TEST(Host, CountsOnlyProcessorsThatItMayRunOn)
{
    const int all = host().activeProcessors();
    int alone = 0;
    std::thread([&alone] {
        cpu_set_t mine;
        ASSERT_EQ(::sched_getaffinity(0, sizeof mine, &mine), 0);
        std::size_t first = 0;
        while (!CPU_ISSET(first, &mine))
            ++first;
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(first, &one);
        ASSERT_EQ(::sched_setaffinity(0, sizeof one, &one), 0);
        alone = host().activeProcessors();
    }).join();

    EXPECT_GE(all, 1);
    EXPECT_EQ(alone, 1);
}

TEST(Host, CountsTheTimeSinceBootWithoutGoingBack)
{
    const auto first = host().timeSinceBoot();
    const auto second = host().timeSinceBoot();

    ASSERT_TRUE(first && second);
    EXPECT_GT(first->count(), 0);
    EXPECT_GE(*second, *first);
}

} // namespace
} // namespace havrel::platform
