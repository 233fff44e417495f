// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel::cli {

/// Gives the item at \p path the record \p bytes, unless it has that very record. Links are not followed.
///
/// \param force write a record of more than 1024 bytes, which no reader takes
/// \return null, or why the item was left as it was
///
/// Threads: any thread.
[[nodiscard]] QString storePreferences(const QByteArray& path, const QByteArray& bytes, bool force);

/// Takes the record away, also an empty one; an item without is left as it is.
///
/// \return null, or why the item was left as it was
///
/// Threads: any thread.
[[nodiscard]] QString removePreferences(const QByteArray& path);

} // namespace havrel::cli
