// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>

namespace havrel {

/// What a program hands over: MIME type to bytes. A type that is absent differs from one that is there with no bytes.
/// Types that a reader does not know are of no account to it.
///
/// Threads: const members any thread, others one at a time.
using Pasteboard = QMap<QString, QByteArray>;

namespace pasteboard {

/// URIs, one a line ending in CR LF; lines that begin with "#" are comments.
/// \source RFC 2483, section 5
inline constexpr QLatin1StringView kUriList("text/uri-list");

/// One path a line.
inline constexpr QLatin1StringView kPlainText("text/plain");

/// The token by which the user's click lets a window of ours come to the front, as the caller's environment has it in
/// XDG_ACTIVATION_TOKEN or DESKTOP_STARTUP_ID.
/// \source xdg-activation-v1; startup-notification-spec 0.1. The type is our own.
inline constexpr QLatin1StringView kActivationToken("application/x-activation-token");

} // namespace pasteboard

/// As it goes over the bus, a{say}.
///
/// Threads: any thread.
[[nodiscard]] QVariantMap dictionaryOf(const Pasteboard& pasteboard);

/// Threads: any thread.
[[nodiscard]] Pasteboard pasteboardOf(const QVariantMap& dictionary);

} // namespace havrel
