// SPDX-License-Identifier: MIT
#include "filters/pattern_file_lines.h"

namespace havrel {
namespace {

bool isNewline(QChar unit)
{
    switch (unit.unicode()) {
    case 0x0A: // line feed
    case 0x0B: // line tabulation
    case 0x0C: // form feed
    case 0x0D: // carriage return
    case 0x85: // next line
    case 0x2028:
    case 0x2029:
        return true;
    default:
        return false;
    }
}

} // namespace

QStringList linesOfPatternFile(const QString& text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !isNewline(text[i]))
            continue;
        lines << text.sliced(start, i - start);
        if (QStringView(text).sliced(i).startsWith(u"\r\n"))
            ++i;
        start = i + 1;
    }
    return lines;
}

} // namespace havrel
