// SPDX-License-Identifier: MIT
#include "platform/file_names.h"

#include <QStringConverter>

#include <algorithm>
#include <array>
#include <cstdint>

namespace havrel::platform {
namespace {

constexpr char16_t kFirstByteSurrogate = 0xDC80;
constexpr char16_t kLastByteSurrogate = 0xDCFF;

std::uint8_t byteAt(QByteArrayView bytes, qsizetype index)
{
    return static_cast<std::uint8_t>(bytes[index]);
}

struct LeadByte
{
    std::uint8_t first, last;             // range of the lead byte
    std::uint8_t length;                  // bytes of the sequence
    std::uint8_t secondFirst, secondLast; // range of the second byte
};

constexpr auto kLeadBytes = std::to_array<LeadByte>({
    {0x00, 0x7F, 1, 0x00, 0x00},
    {0xC2, 0xDF, 2, 0x80, 0xBF},
    {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},
});

/// The number of bytes of the well-formed sequence that starts at \p start; 0 when there is none.
qsizetype sequenceLength(QByteArrayView bytes, qsizetype start)
{
    const std::uint8_t lead = byteAt(bytes, start);
    const auto row = std::find_if(kLeadBytes.begin(), kLeadBytes.end(), [lead](const LeadByte& each) {
        return lead >= each.first && lead <= each.last;
    });
    if (row == kLeadBytes.end() || start + row->length > bytes.size())
        return 0;
    if (row->length > 1) {
        const std::uint8_t second = byteAt(bytes, start + 1);
        if (second < row->secondFirst || second > row->secondLast)
            return 0;
    }
    for (qsizetype i = start + 2; i < start + row->length; ++i)
        if ((byteAt(bytes, i) & 0xC0) != 0x80)
            return 0;
    return row->length;
}

/// The text of well-formed UTF-8. The toolkit swallows a byte order mark at the start; a name keeps it.
QString textOfUTF8(QByteArrayView bytes)
{
    if (!bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

QString textOfMixedBytes(QByteArrayView bytes)
{
    QString text;
    text.reserve(bytes.size());
    qsizetype wellFormedStart = 0;
    qsizetype i = 0;
    while (i < bytes.size()) {
        if (const qsizetype length = sequenceLength(bytes, i); length > 0) {
            i += length;
            continue;
        }
        text += textOfUTF8(bytes.sliced(wellFormedStart, i - wellFormedStart));
        text += QChar(static_cast<char16_t>(0xDC00 + byteAt(bytes, i)));
        wellFormedStart = ++i;
    }
    return text += textOfUTF8(bytes.sliced(wellFormedStart));
}

bool isByteSurrogate(QChar unit)
{
    return unit.unicode() >= kFirstByteSurrogate && unit.unicode() <= kLastByteSurrogate;
}

} // namespace

QString textOfFileName(QByteArrayView bytes)
{
    return bytes.isValidUtf8() ? textOfUTF8(bytes) : textOfMixedBytes(bytes);
}

QByteArray bytesOfFileName(QStringView text)
{
    QByteArray bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
            continue;
        }
        if (!isByteSurrogate(text[i]))
            continue;
        bytes += text.sliced(start, i - start).toUtf8();
        bytes += static_cast<char>(text[i].unicode() - 0xDC00);
        start = i + 1;
    }
    const QByteArray rest = text.sliced(start).toUtf8();
    return bytes.isEmpty() ? rest : bytes += rest;
}

} // namespace havrel::platform
