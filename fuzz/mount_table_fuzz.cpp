// SPDX-License-Identifier: MIT
#include "platform/mount_table.h"

#include "tests/support/mount_line.h"

#include <cstddef>
#include <cstdint>

using namespace havrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto entries = platform::parseMountTable(text);
    QByteArray again;
    for (const platform::MountEntry& entry : entries) {
        if (entry.mountPoint.isEmpty())
            __builtin_trap();
        again += tests::mountLine(entry);
    }
    if (platform::parseMountTable(again) != entries)
        __builtin_trap();
    if (platform::uncoveredMounts(entries).size() > entries.size())
        __builtin_trap();
    for (const QByteArray& hidden : platform::hiddenMountPoints(text))
        if (hidden.isEmpty())
            __builtin_trap();
    return 0;
}
