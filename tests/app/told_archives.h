// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QList>
#include <QVariantMap>

namespace havrel::tests {

/// What a monitor tells of an archive.
inline QVariantMap archiveAt(const QByteArray& path)
{
    return {{QStringLiteral("path"), path}};
}
inline QList<QVariantMap> archivesAt(const QByteArrayList& paths)
{
    QList<QVariantMap> archives;
    for (const QByteArray& each : paths)
        archives.append(archiveAt(each));
    return archives;
}

} // namespace havrel::tests
