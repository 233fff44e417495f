// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace havrel {

/// How bytes stand for text, by the numbers that property lists and programs of this family exchange. Any other number
/// is one that cannot be decoded here.
enum class TextEncoding : std::uint32_t {
    Default = 0, ///< UTF-8
    ASCII = 1,
    UTF8 = 4,
    ISOLatin1 = 5,
    UTF16 = 10, ///< by its byte order mark, without one in the processor's order; likewise UTF32
    UTF16BigEndian = 0x90000100,
    UTF16LittleEndian = 0x94000100,
    UTF32 = 0x8C000100,
    UTF32BigEndian = 0x98000100,
    UTF32LittleEndian = 0x9C000100,
};

/// The text, without a byte order mark; nullopt for bytes that stand for none in \p encoding, and for an encoding that
/// is not known.
///
/// Threads: any thread.
[[nodiscard]] std::optional<QString> decodedText(const QByteArray& bytes, TextEncoding encoding);

} // namespace havrel
