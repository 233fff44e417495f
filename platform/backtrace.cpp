// SPDX-License-Identifier: MIT
#include "platform/backtrace.h"

#include "platform/file_names.h"

#include <array>

#include <dlfcn.h>
#include <execinfo.h>

namespace havrel::platform {
namespace {

constexpr int kMostFrames = 128;

} // namespace

ReturnAddresses currentReturnAddresses()
{
    std::array<void*, kMostFrames> frames{};
    const int count = ::backtrace(frames.data(), kMostFrames);
    ReturnAddresses addresses;
    for (int i = 1; i < count; ++i)
        addresses.push_back(reinterpret_cast<std::uintptr_t>(frames.at(static_cast<std::size_t>(i))));
    return addresses;
}

std::optional<SymbolLocation> symbolAt(std::uintptr_t address)
{
    Dl_info info{};
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an address is what is looked up
    if (::dladdr(reinterpret_cast<void*>(address), &info) ==
        0) // NOLINT(performance-no-int-to-ptr): an address, not an object
        return std::nullopt;
    return SymbolLocation{.symbolAddress = reinterpret_cast<std::uintptr_t>(info.dli_saddr),
                          .symbolName = info.dli_sname ? textOfFileName(info.dli_sname) : QString(),
                          .imagePath = info.dli_fname ? textOfFileName(info.dli_fname) : QString(),
                          .imageBase = reinterpret_cast<std::uintptr_t>(info.dli_fbase)};
}

} // namespace havrel::platform
