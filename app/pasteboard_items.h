// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/pasteboard.h"

#include <QList>
#include <QUrl>

#include <optional>

namespace havrel {

/// The file URLs of the list of URIs on \p pasteboard, in its order; none when there is no list, empty when there is
/// one that names no file on this computer. Whether the files exist is not looked at.
///
/// Each URL holds the bytes of a path, without slashes at its end. URIs that would name another item than was meant
/// (with a query, a wrong escape) are left out, and told in one line at Debug.
///
/// \source RFC 2483, section 5
///
/// Threads: any thread.
[[nodiscard]] std::optional<QList<QUrl>> fileURLsOnPasteboard(const Pasteboard& pasteboard);

/// File URLs of the paths in the text on \p pasteboard that name something, in its order: one path a line, taken as it
/// is but for a carriage return at its end. A dangling link is something; a relative path names nothing, because whose
/// folder it is relative to is not known. Looks at the disk.
///
/// Threads: any thread.
[[nodiscard]] QList<QUrl> reachableURLsOnPasteboard(const Pasteboard& pasteboard);

} // namespace havrel
