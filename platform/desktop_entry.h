// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

namespace havrel::platform {

/// What a desktop file tells of an application, as far as starting it needs. Texts are in the file's encoding, UTF-8,
/// with the escapes of values resolved.
struct DesktopEntry
{
    QByteArray file{}; ///< its path; empty when it did not come from a file
    QByteArray name{}; ///< without regard to the language
    QByteArray icon{};
    QByteArray exec{};
    QByteArray tryExec{};     ///< a program without which the application counts as not installed
    QByteArray workingPath{}; ///< the folder to start in; empty: this process's
    bool hidden = false;      ///< the application counts as deleted
    bool busActivatable = false;
    bool isApplication = false; ///< neither link nor folder
};

/// The entry in the text of a desktop file; none when it has no group "[Desktop Entry]". Lines that are no part of the
/// format are passed over, as are other groups; of a key that stands twice the last one counts.
///
/// \source Desktop Entry Specification 1.5
///
/// Threads: any thread.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(QByteArrayView contents);

/// The words of the command that starts the application with \p uris to open, the program first.
///
/// Words are split, unquoted and filled in as the source below has it; "%f" and "%F" get the paths of file URIs, "%f"
/// and "%u" the first one only. Where the line has no place for them, the paths are added at its end, as desktops do.
/// None when the line is empty, ends inside a quote, or has a field code that is unknown or stands where it may not.
///
/// \source Desktop Entry Specification 1.5, "The Exec key"
///
/// Threads: any thread.
[[nodiscard]] std::optional<QByteArrayList> commandOf(const DesktopEntry& entry, const QByteArrayList& uris);

} // namespace havrel::platform
