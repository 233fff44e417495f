// SPDX-License-Identifier: MIT
#include "diagnostics/non_lossy_ascii.h"

namespace havrel {
namespace {

void appendOctal(QByteArray& ascii, unsigned unit)
{
    ascii += '\\';
    for (const unsigned shift : {6U, 3U, 0U})
        ascii += static_cast<char>('0' + ((unit >> shift) & 7U));
}

void appendHexadecimal(QByteArray& ascii, unsigned unit)
{
    constexpr const char* kDigits = "0123456789abcdef";
    ascii += "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U})
        ascii += kDigits[(unit >> shift) & 15U];
}

void appendUnit(QByteArray& ascii, char16_t unit)
{
    if (unit == u'\\')
        ascii += "\\\\";
    else if (unit > 0xFF)
        appendHexadecimal(ascii, unit);
    else if (unit > 0x7F || unit == 0)
        appendOctal(ascii, unit);
    else
        ascii += static_cast<char>(unit);
}

} // namespace

QByteArray nonLossyASCII(QStringView text)
{
    QByteArray ascii;
    ascii.reserve(text.size());
    for (const QChar unit : text)
        appendUnit(ascii, unit.unicode());
    return ascii;
}

} // namespace havrel
