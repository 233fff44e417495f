// SPDX-License-Identifier: MIT
// Any text as a desktop file: nothing breaks, and a command has a program.
#include "platform/desktop_entry.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace havrel::platform;
    const QByteArrayView text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    DesktopEntry entry = parseDesktopEntry(text).value_or(DesktopEntry{.exec = text.toByteArray()});
    for (const QByteArrayList& uris : {QByteArrayList(), QByteArrayList{"file:///a%20b", "zephra:c"}})
        if (const auto command = commandOf(entry, uris); command && (command->isEmpty() || command->first().isEmpty()))
            std::abort();
    return 0;
}
