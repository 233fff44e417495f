// SPDX-License-Identifier: MIT
#include "platform/xfs_geometry.h"

#include <sys/ioctl.h>

namespace havrel::platform {
namespace {

/// The first version of the answer, which all kernels give. The library's header is not worth a package.
struct Answer
{
    std::array<std::uint32_t, 8> sizes;
    std::array<std::uint64_t, 4> counts;
    std::array<std::uint8_t, 16> uuid;
    std::uint32_t stripeUnit;
    std::uint32_t stripeWidth;
    std::int32_t version;
    std::uint32_t flags;
    std::array<std::uint32_t, 3> sectorSizes;
};
static_assert(sizeof(Answer) == 112);

constexpr unsigned long kGetGeometry = _IOR('X', 100, Answer);
constexpr std::uint32_t kIgnoresCase = 1U << 13U;
constexpr std::uint32_t kSharesBlocks = 1U << 20U;

} // namespace

std::optional<XfsGeometry> xfsGeometry(int item)
{
    Answer answer{};
    if (::ioctl(item, kGetGeometry, &answer) != 0)
        return std::nullopt;
    return XfsGeometry{answer.uuid, (answer.flags & kSharesBlocks) != 0, (answer.flags & kIgnoresCase) != 0};
}

} // namespace havrel::platform
