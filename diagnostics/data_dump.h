// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

namespace havrel {

/// Rows that show \p data in hexadecimal and as characters, 64 bytes each:
///
///     000000: 41007a   ...   |A_z                             ...   |
///
/// With a \p tail above 0, rounded up to R, a multiple of 64, and data longer than 2R + 64 bytes, only the first and
/// the last R bytes are shown, and between them the row "... N more bytes ...".
///
/// Threads: any thread.
[[nodiscard]] QStringList dataDumpRows(const QByteArray& data, std::size_t tail);

} // namespace havrel
