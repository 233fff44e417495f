// SPDX-License-Identifier: MIT
#include "platform/access_list.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace havrel::platform;
    const auto* const bytes = reinterpret_cast<const char*>(data);
    const auto list = parseAccessList(QByteArrayView(bytes, static_cast<qsizetype>(size)));
    if (list && parseAccessList(bytesOfAccessList(*list)) != list)
        __builtin_trap();
    return 0;
}
