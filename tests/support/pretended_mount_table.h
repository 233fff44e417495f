// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/item_facts.h"
#include "tests/support/replaced_item_calls.h"
#include "tests/support/temporary_tree.h"

#include <QByteArray>
#include <QByteArrayList>

#include <cstring>

namespace havrel::tests {

/// Makes \p text the kernel's table of mounts for as long as the calls are replaced and \p tree is there.
inline void pretendMountTable(ReplacedItemCalls& calls, const TemporaryTree& tree, const QByteArray& text)
{
    tree.write("mountinfo", text.toStdString());
    calls->openat = [path = tree.path("mountinfo")](int folder, const char* name, int flags, mode_t mode) {
        const bool isTable = std::strcmp(name, "/proc/self/mountinfo") == 0;
        return platform::systemItemCalls().openat(folder, isTable ? path.c_str() : name, flags, mode);
    };
}

/// The kernel's table with every mount of the type \p type.
inline QByteArray mountTableOfType(const QByteArray& type)
{
    QByteArrayList lines = QByteArray::fromStdString(contentsOf("/proc/self/mountinfo")).split('\n');
    for (QByteArray& line : lines) {
        const qsizetype start = line.indexOf(" - ") + 3;
        if (start >= 3)
            line.replace(start, line.indexOf(' ', start) - start, type);
    }
    return lines.join('\n');
}

} // namespace havrel::tests
