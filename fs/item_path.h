// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel {

/// The path that something given by a user or another program means, or why it means none.
struct ItemPath
{
    QByteArray path;
    QString fault{}; ///< null when there is a path
};

/// The path of the item that the "file:" URI \p uri names on this computer, as bytes, slashes at its end included.
/// What would name another item than its sender meant is refused: a query, a fragment, a wrong percent escape.
///
/// \source RFC 8089; the host may be absent, empty, "localhost" or this computer's name.
///
/// Threads: any thread.
[[nodiscard]] ItemPath pathOfFileURI(const QByteArray& uri);

/// The "file:" URI of the absolute \p path; every byte comes back from it.
///
/// \source RFC 8089, RFC 3986, section 2.3
///
/// Threads: any thread.
[[nodiscard]] QByteArray fileURIOfPath(const QByteArray& path);

/// Whether \p text begins with "file:", in whatever case.
///
/// Threads: any thread.
[[nodiscard]] bool isFileURI(QByteArrayView text);

/// \p path without any "/" and "/." at its end, which would lead through a link to its target; "/" stays.
///
/// Threads: any thread.
[[nodiscard]] QByteArray withoutTrailingSlashes(QByteArray path);

} // namespace havrel
