// SPDX-License-Identifier: MIT
#include "platform/bus_body.h"

#include <cstddef>
#include <cstdint>

/// A complete type stays one when something follows it, and is its own first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView signature(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QByteArrayView first = havrel::platform::firstCompleteType(signature);
    if (!signature.startsWith(first))
        __builtin_trap();
    if (!first.isEmpty() && (havrel::platform::firstCompleteType(first).size() != first.size() ||
                             havrel::platform::firstCompleteType(first.toByteArray() + "i").size() != first.size()))
        __builtin_trap();
    return 0;
}
