// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel {

/// Where this user's key of the archive \p identifier is kept: a file in "keys" below the product's data folder.
///
/// Threads: any thread.
[[nodiscard]] QByteArray keyFileOf(const QString& identifier);

/// Makes a key of 256 random bits and keeps it in the key file of the archive \p identifier, which its owner alone can
/// read, in a folder likewise. Blocks on the disk.
///
/// \throws HVException "Archive" when it cannot be kept, or there is a key already; nothing has changed then.
///
/// Threads: any thread.
void makeKeyFile(const QString& identifier);

/// Remembers, beside the key files, that this user has given \p command as what prints the key of the archive
/// \p identifier. An archive file alone must not say what is run: whoever opens one that came from elsewhere would run
/// it.
///
/// \throws HVException "Archive" when it cannot be kept.
///
/// Threads: any thread.
void allowKeyCommand(const QString& identifier, const QString& command);

/// Whether this user has given exactly that command. Blocks on the disk.
///
/// Threads: any thread.
[[nodiscard]] bool isAllowedKeyCommand(const QString& identifier, const QString& command);

/// Takes away a key, or the command for it, that turned out to be of no use. What cannot be removed stays.
///
/// Threads: any thread.
void removeKeyFile(const QString& identifier);

} // namespace havrel
