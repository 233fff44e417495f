// SPDX-License-Identifier: MIT
#include "platform/bus_text.h"

namespace havrel::platform {
namespace {

bool isNoCharacter(char32_t point)
{
    return (point & 0xFFFE) == 0xFFFE || (point >= 0xFDD0 && point <= 0xFDEF) || QChar::isSurrogate(point);
}

} // namespace

QString busText(const QString& text)
{
    QString result = text;
    for (qsizetype i = 0, length = 1; i < text.size(); i += length) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        length = isPair ? 2 : 1;
        const char32_t point = isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode();
        if (isNoCharacter(point))
            result.replace(i, length, QString(length, QChar::ReplacementCharacter));
    }
    return result;
}

} // namespace havrel::platform
