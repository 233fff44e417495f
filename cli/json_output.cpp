// SPDX-License-Identifier: MIT
#include "cli/json_output.h"

#include "cli/printable_text.h"

#include <array>
#include <charconv>

namespace havrel::cli {
namespace {

bool isPlain(QChar unit)
{
    return unit != u'"' && unit != u'\\' && !unit.isSurrogate() && !steersTheTerminal(unit);
}

QByteArray escaped(QChar unit)
{
    switch (unit.unicode()) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\t':
        return "\\t";
    default:
        return "\\u" + QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    }
}

} // namespace

QByteArray jsonText(QStringView text)
{
    QByteArray json = "\"";
    qsizetype plainStart = 0;
    const auto endPlain = [&](qsizetype end) { json += text.sliced(plainStart, end - plainStart).toUtf8(); };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (!isPlain(text[i])) {
            endPlain(i);
            json += escaped(text[i]);
            plainStart = i + 1;
        }
    }
    endPlain(text.size());
    return json += '"';
}

QByteArray jsonTexts(const QStringList& texts)
{
    QByteArray json = "[";
    for (const QString& text : texts)
        json += (json.size() > 1 ? "," : "") + jsonText(text);
    return json + ']';
}

QByteArray jsonReal(double value)
{
    std::array<char, 32> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    QByteArray json(digits.data(), written.ptr - digits.data());
    if (!json.contains('.') && !json.contains('e'))
        json += ".0";
    return json;
}

JsonObject& JsonObject::add(QStringView key, QByteArrayView value)
{
    if (m_json.size() > 1)
        m_json += ',';
    m_json += jsonText(key);
    m_json += ':';
    m_json += value;
    return *this;
}

QByteArray JsonObject::take()
{
    m_json += '}';
    return std::move(m_json);
}

} // namespace havrel::cli
