// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <optional>

// How names of any bytes are told to the engine restic, and how it tells them.
//
// Its JSON replaces each byte that is not UTF-8 by U+FFFD, as do the paths and the targets of links that it stores; the
// names in its trees are stored with escapes, and lose nothing.
namespace havrel::restic {

/// The pattern that matches the absolute \p path and nothing else. \source filepath.Match of Go's library
///
/// Threads: any thread.
[[nodiscard]] QByteArray patternOf(const QByteArray& path);

/// \p bytes as a part of a tag: percent-encoded but for letters, digits, "-", ".", "_", "~" and "/". \source RFC 3986
///
/// Threads: any thread.
[[nodiscard]] QByteArray tagTextOf(const QByteArray& bytes);

/// The bytes that tagTextOf() has encoded.
///
/// Threads: any thread.
[[nodiscard]] QByteArray bytesOfTagText(const QByteArray& text);

/// The bytes of a name in a tree, where it stands as the inside of a string of the language Go; none when \p quoted is
/// no such thing. \source the Go programming language specification, "String literals"; strconv.Unquote
///
/// Threads: any thread.
[[nodiscard]] std::optional<QByteArray> bytesOfQuoted(const QByteArray& quoted);

/// Whether the engine stores \p bytes as they are where it stores text.
///
/// Threads: any thread.
[[nodiscard]] bool survivesAsText(const QByteArray& bytes);

} // namespace havrel::restic
