// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mount_table.h"

#include <QByteArray>
#include <QByteArrayList>

namespace havrel::tests {

/// \p text as the kernel writes it into its table of mounts.
inline QByteArray escapedMountText(const QByteArray& text)
{
    QByteArray escaped;
    for (const char each : text) {
        const bool plain = QByteArrayView(" \t\n\\#").indexOf(each) < 0;
        escaped += plain ? QByteArray(1, each) : '\\' + QByteArray::number(each, 8).rightJustified(3, '0');
    }
    return escaped;
}

/// A row of the table, with its newline; \p optional: fields such as "shared:1 master:2".
inline QByteArray mountLine(const platform::MountEntry& entry, const QByteArray& optional = {})
{
    QByteArrayList fields{QByteArray::number(quint64(entry.id)),
                          QByteArray::number(quint64(entry.parent)),
                          QByteArray::number(entry.major) + ':' + QByteArray::number(entry.minor),
                          escapedMountText(entry.root),
                          escapedMountText(entry.mountPoint),
                          entry.options};
    if (!optional.isEmpty())
        fields << optional;
    fields << "-" << escapedMountText(entry.type) << escapedMountText(entry.source) << entry.superOptions;
    return fields.join(' ') + '\n';
}

} // namespace havrel::tests
