// SPDX-License-Identifier: MIT
#include "cli/printable_text.h"

#include "platform/file_names.h"

#include <algorithm>
#include <array>

namespace havrel::cli {
namespace {

bool isPlain(char byte)
{
    return byte >= ' ' && byte <= '~';
}

struct Range
{
    char16_t first, last;
};

/// Control characters, line and paragraph separators, and marks of the direction of writing.
/// \source Unicode 15, general categories Cc, Zl and Zp, property Bidi_Control; U+FEFF because nobody sees it.
constexpr auto kSteering = std::to_array<Range>({
    {0x0000, 0x001F},
    {0x007F, 0x009F},
    {0x061C, 0x061C},
    {0x200E, 0x200F},
    {0x2028, 0x202E},
    {0x2066, 0x2069},
    {0xFEFF, 0xFEFF},
});

QByteArray hexadecimal(const char* prefix, unsigned value, int digits)
{
    return prefix + QByteArray::number(value, 16).rightJustified(digits, '0');
}

QByteArray escaped(QChar unit)
{
    switch (unit.unicode()) {
    case '\n':
        return "\\n";
    case '\t':
        return "\\t";
    case '\r':
        return "\\r";
    default:
        break;
    }
    if (unit.isLowSurrogate() && unit.unicode() <= 0xDCFF) // a byte that is not UTF-8
        return hexadecimal("\\x", unit.unicode() & 0xFFU, 2);
    if (unit.unicode() < 0x80)
        return hexadecimal("\\x", unit.unicode(), 2);
    return hexadecimal("\\u", unit.unicode(), 4);
}

} // namespace

bool steersTheTerminal(QChar unit)
{
    return std::any_of(kSteering.begin(), kSteering.end(), [unit](const Range& each) {
        return unit >= each.first && unit <= each.last;
    });
}

QByteArray printableName(const QByteArray& bytes)
{
    if (std::all_of(bytes.begin(), bytes.end(), isPlain))
        return bytes;
    return printableText(platform::textOfFileName(bytes));
}

QByteArray printableText(const QString& text)
{
    QByteArray shown;
    qsizetype shownTo = 0;
    const auto showUpTo = [&](qsizetype end) { shown += QStringView(text).sliced(shownTo, end - shownTo).toUtf8(); };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        if (unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (unit.isSurrogate() || steersTheTerminal(unit)) {
            showUpTo(i);
            shown += escaped(unit);
            shownTo = i + 1;
        }
    }
    showUpTo(text.size());
    return shown;
}

} // namespace havrel::cli
