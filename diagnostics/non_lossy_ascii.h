// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel {

/// \p text in plain ASCII from which it can be read back: a backslash is doubled, U+0080 to U+00FF become three octal
/// digits ("\351"), every other UTF-16 unit four lower-case hexadecimal ones ("\u201c", "\ud83d\ude00"). ASCII control
/// characters stay, but for U+0000, which becomes "\000" because it would end the line for C functions.
///
/// \source the platform's "non-lossy ASCII" string encoding
///
/// Threads: any thread.
[[nodiscard]] QByteArray nonLossyASCII(QStringView text);

} // namespace havrel
