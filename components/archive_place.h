// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel {

/// The place of a repository that a user has given, as it is stored: a folder becomes absolute and plain, what begins
/// like a place in a network ("sftp:", "s3:" ...) stays.
///
/// \source restic's manual, "Preparing a new repository"
///
/// Threads: any thread.
[[nodiscard]] QByteArray placeOfRepository(const QByteArray& given, const QByteArray& workingFolder);

} // namespace havrel
