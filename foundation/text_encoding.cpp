// SPDX-License-Identifier: MIT
#include "foundation/text_encoding.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace havrel {
namespace {

struct Codec
{
    TextEncoding encoding;
    QStringConverter::Encoding converter;
    qsizetype unit = 1; // bytes that make the smallest piece of text
};

constexpr auto kCodecs = std::to_array<Codec>({
    {TextEncoding::Default, QStringConverter::Utf8},
    {TextEncoding::ASCII, QStringConverter::Latin1},
    {TextEncoding::UTF8, QStringConverter::Utf8},
    {TextEncoding::ISOLatin1, QStringConverter::Latin1},
    {TextEncoding::UTF16, QStringConverter::Utf16, 2},
    {TextEncoding::UTF16BigEndian, QStringConverter::Utf16BE, 2},
    {TextEncoding::UTF16LittleEndian, QStringConverter::Utf16LE, 2},
    {TextEncoding::UTF32, QStringConverter::Utf32, 4},
    {TextEncoding::UTF32BigEndian, QStringConverter::Utf32BE, 4},
    {TextEncoding::UTF32LittleEndian, QStringConverter::Utf32LE, 4},
});

bool isASCII(const QByteArray& bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

} // namespace

std::optional<QString> decodedText(const QByteArray& bytes, TextEncoding encoding)
{
    const auto* const codec = std::find_if(
        kCodecs.begin(), kCodecs.end(), [encoding](const Codec& each) { return each.encoding == encoding; });
    if (codec == kCodecs.end() || (encoding == TextEncoding::ASCII && !isASCII(bytes)))
        return std::nullopt;
    if (bytes.size() % codec->unit != 0)
        return std::nullopt;
    QStringDecoder decoder(codec->converter, QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    // The decoder lets half a surrogate pair pass.
    return decoder.hasError() || !text.isValidUtf16() ? std::nullopt : std::optional(std::move(text));
}

} // namespace havrel
