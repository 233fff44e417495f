// SPDX-License-Identifier: MIT
#include "platform/os_release.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const text = reinterpret_cast<const char*>(data);
    const auto assignments = havrel::platform::parseOSRelease(QByteArray(text, static_cast<qsizetype>(size)));
    for (const QByteArray& name : assignments.keys())
        if (name.isEmpty() || name.contains('='))
            __builtin_trap();
    return 0;
}
