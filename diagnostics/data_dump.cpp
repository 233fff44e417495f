// SPDX-License-Identifier: MIT
#include "diagnostics/data_dump.h"

namespace havrel {
namespace {

constexpr qsizetype kRowBytes = 64;
constexpr qsizetype kGroupBytes = 4; // between blanks

QString hexadecimal(qsizetype number, int digits)
{
    return QString::number(number, 16).rightJustified(digits, u'0');
}

QChar shownByte(char byte)
{
    return QLatin1Char(byte >= 32 && byte <= 126 ? byte : '_');
}

QString row(QByteArrayView data, qsizetype offset)
{
    QString bytes;
    QString characters;
    for (qsizetype i = 0; i < kRowBytes; ++i) {
        const bool isThere = offset + i < data.size();
        if (i % kGroupBytes == 0)
            bytes += u' ';
        bytes += isThere ? hexadecimal(static_cast<quint8>(data[offset + i]), 2) : QStringLiteral("  ");
        characters += isThere ? shownByte(data[offset + i]) : QChar(u' ');
    }
    return hexadecimal(offset, 6) + u':' + bytes + QStringLiteral(" |") + characters + u'|';
}

void appendRows(QStringList& rows, QByteArrayView data, qsizetype start)
{
    for (qsizetype offset = start; offset < data.size(); offset += kRowBytes)
        rows << row(data, offset);
}

/// How many bytes are shown at either end: \p tail in whole rows; all of \p size when that leaves too little out.
qsizetype shownAtEnd(std::size_t tail, qsizetype size)
{
    if (tail == 0 || tail >= static_cast<std::size_t>(size))
        return size;
    const qsizetype rounded = (static_cast<qsizetype>(tail) + kRowBytes - 1) / kRowBytes * kRowBytes;
    return size > 2 * rounded + kRowBytes ? rounded : size;
}

} // namespace

QStringList dataDumpRows(const QByteArray& data, std::size_t tail)
{
    const qsizetype shown = shownAtEnd(tail, data.size());
    QStringList rows;
    appendRows(rows, QByteArrayView(data).first(shown), 0);
    if (shown < data.size()) {
        rows << QStringLiteral("... %1 more bytes ...").arg(data.size() - 2 * shown);
        appendRows(rows, data, data.size() - shown);
    }
    return rows;
}

} // namespace havrel
