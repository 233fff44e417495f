// SPDX-License-Identifier: MIT
#include "diagnostics/exception_reason.h"

#include <QStringView>

namespace havrel {
namespace {

bool isNewline(char32_t character)
{
    return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 || character == 0x2029;
}

bool isControlOrIllegal(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_NotAssigned: // noncharacters too
        return true;
    default:
        return false;
    }
}

char32_t characterAt(QStringView text, qsizetype i)
{
    const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode();
}

} // namespace

QString cleanedReason(const QString& reason)
{
    QString cleaned;
    cleaned.reserve(reason.size());
    for (qsizetype i = 0; i < reason.size();) {
        const char32_t character = characterAt(reason, i);
        const qsizetype length = QChar::requiresSurrogates(character) ? 2 : 1;
        if (isNewline(character))
            cleaned += QStringLiteral(" | ");
        else if (isControlOrIllegal(character))
            cleaned += u'?';
        else
            cleaned += QStringView(reason).sliced(i, length);
        i += length;
    }
    return cleaned;
}

} // namespace havrel
