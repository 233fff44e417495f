// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel::platform {

/// The text of a file name. Bytes that are not part of well-formed UTF-8 become the lone low surrogates
/// U+DC80..U+DCFF, one a byte, so that every byte string survives the way to text and back.
///
/// \source Unicode 15, table 3-7 (well-formed byte sequences); the surrogate convention is that of PEP 383.
///
/// Threads: any thread.
[[nodiscard]] QString textOfFileName(QByteArrayView bytes);

/// The bytes of a file name, as the kernel takes them: the inverse of textOfFileName.
///
/// A lone surrogate outside U+DC80..U+DCFF stands for no byte and becomes "?".
///
/// Threads: any thread.
[[nodiscard]] QByteArray bytesOfFileName(QStringView text);

} // namespace havrel::platform
