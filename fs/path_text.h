// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// What can be said about a path from its bytes alone, without asking the disk.
///
/// Threads: any thread.
namespace havrel::path_text {

/// The last component: trailing slashes do not count, "/" for the root, "." for the empty path.
///
/// \source basename(3), POSIX version; unlike it, changes nothing.
[[nodiscard]] QByteArrayView baseName(QByteArrayView path);

/// What comes before the last component: "." when there is no slash, "/" for an item of the root.
///
/// \source dirname(3), with the C library's view that two leading slashes are a root of their own.
[[nodiscard]] QByteArrayView directoryName(QByteArrayView path);

/// \p parent, one "/" unless it ends in one, \p name. The empty parent gives "/name".
[[nodiscard]] QByteArray joined(QByteArrayView parent, QByteArrayView name);

/// As joined(), but the empty parent gives "name" alone.
[[nodiscard]] QByteArray appended(QByteArrayView directory, QByteArrayView component);

/// \p path without "." and "..", doubled and trailing slashes, judged by the text alone: links are not looked at.
/// A ".." at the root stays there; a relative path keeps the ".." that leave it.
[[nodiscard]] QByteArray standardised(QByteArrayView path);

/// What follows the last "." of a name; empty when there is none, when it is the first character or the last.
[[nodiscard]] QString extension(const QString& name);

/// The file URL of a path, with each byte that is not plain in a URL percent-encoded, so that fromURL gives it back.
[[nodiscard]] QUrl toURL(QByteArrayView path);

/// The bytes of a URL's path, percent-decoded, without a trailing slash (unless it is the root).
[[nodiscard]] QByteArray fromURL(const QUrl& url);

} // namespace havrel::path_text
