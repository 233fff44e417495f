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

/// Takes away a key that turned out to be of no use. What cannot be removed stays.
///
/// Threads: any thread.
void removeKeyFile(const QString& identifier);

} // namespace havrel
