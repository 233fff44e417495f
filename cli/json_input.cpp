// SPDX-License-Identifier: MIT
#include "cli/json_input.h"

#include "foundation/description.h"
#include "platform/file_names.h"

#include <array>
#include <charconv>
#include <cmath>

namespace havrel::cli {
namespace {

constexpr int kDeepest = 128;

struct Fault
{
    const char* text;
    qsizetype offset;
};

struct Escape
{
    char letter;
    char16_t unit;
};
constexpr auto kEscapes = std::to_array<Escape>({
    {'"', u'"'},
    {'\\', u'\\'},
    {'/', u'/'},
    {'b', u'\b'},
    {'f', u'\f'},
    {'n', u'\n'},
    {'r', u'\r'},
    {'t', u'\t'},
});

/// Reads from left to right; what is wrong leaves as a Fault.
class JsonReader
{
public:
    explicit JsonReader(const QByteArray& text)
        : m_text(text)
    {
        if (!text.isValidUtf8())
            fail("not valid UTF-8");
    }

    QVariant readAll()
    {
        QVariant value = readValue(0);
        skipSpace();
        if (m_at < m_text.size())
            fail("something follows the value");
        return value;
    }

private:
    [[noreturn]] void fail(const char* text) const { throw Fault{text, m_at}; }

    /// The next byte, NUL at the end.
    [[nodiscard]] char peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }

    bool take(char expected)
    {
        if (m_at >= m_text.size() || m_text[m_at] != expected)
            return false;
        ++m_at;
        return true;
    }

    void skipSpace()
    {
        while (m_at < m_text.size() && QByteArrayView(" \t\r\n").contains(m_text[m_at]))
            ++m_at;
    }

    void expect(char wanted, const char* fault)
    {
        skipSpace();
        if (!take(wanted))
            fail(fault);
    }

    QVariant readValue(int depth)
    {
        if (depth > kDeepest)
            fail("nested too deep");
        skipSpace();
        switch (peek()) {
        case '{':
            return readObject(depth);
        case '[':
            return readArray(depth);
        case '"':
            return readString();
        default:
            return readWordOrNumber();
        }
    }

    QVariant readWordOrNumber()
    {
        const QByteArrayView rest = QByteArrayView(m_text).sliced(m_at);
        const auto isWord = [&](QByteArrayView word) {
            if (!rest.startsWith(word))
                return false;
            m_at += word.size();
            return true;
        };
        if (isWord("true"))
            return true;
        if (isWord("false"))
            return false;
        if (isWord("null"))
            return nullObject();
        return readNumber();
    }

    QVariant readObject(int depth)
    {
        QVariantMap object;
        ++m_at;
        skipSpace();
        if (take('}'))
            return object;
        do {
            skipSpace();
            if (peek() != '"')
                fail("a key in quotes is expected");
            const QString key = readString();
            if (object.contains(key))
                fail("the same key twice");
            expect(':', "a colon is expected");
            object.insert(key, readValue(depth + 1));
            skipSpace();
        } while (take(','));
        expect('}', "a comma or the end of the object is expected");
        return object;
    }

    QVariant readArray(int depth)
    {
        QVariantList array;
        ++m_at;
        skipSpace();
        if (take(']'))
            return array;
        do {
            array.append(readValue(depth + 1));
            skipSpace();
        } while (take(','));
        expect(']', "a comma or the end of the array is expected");
        return array;
    }

    QString readString()
    {
        QString string;
        ++m_at;
        for (;;) {
            const qsizetype start = m_at;
            while (m_at < m_text.size() && m_text[m_at] != '"' && m_text[m_at] != '\\' && !isControl(m_text[m_at]))
                ++m_at;
            string += platform::textOfFileName(QByteArrayView(m_text).sliced(start, m_at - start));
            if (take('"'))
                return string;
            if (!take('\\'))
                fail(m_at < m_text.size() ? "a control character in a string" : "a string does not end");
            string += readEscape();
        }
    }

    static bool isControl(char byte) { return static_cast<unsigned char>(byte) < 0x20; }

    QChar readEscape()
    {
        if (take('u'))
            return readCodeUnit();
        for (const Escape& each : kEscapes)
            if (take(each.letter))
                return each.unit;
        fail("an unknown escape in a string");
    }

    QChar readCodeUnit()
    {
        const QByteArrayView digits =
            QByteArrayView(m_text).sliced(m_at).first(qMin<qsizetype>(4, m_text.size() - m_at));
        unsigned unit = 0;
        const auto read = std::from_chars(digits.begin(), digits.end(), unit, 16);
        if (digits.size() != 4 || read.ptr != digits.end())
            fail("\\u wants four hexadecimal digits");
        m_at += 4;
        return {static_cast<char16_t>(unit)};
    }

    void skipDigits()
    {
        if (peek() < '0' || peek() > '9')
            fail("a value is expected");
        while (peek() >= '0' && peek() <= '9')
            ++m_at;
    }

    QVariant readNumber()
    {
        const qsizetype start = m_at;
        const bool negative = take('-');
        const bool leadingZero = peek() == '0';
        const qsizetype digitsStart = m_at;
        skipDigits();
        if (leadingZero && m_at - digitsStart > 1)
            fail("a number begins with a zero");
        const qsizetype integerEnd = m_at;
        if (take('.'))
            skipDigits();
        if (take('e') || take('E')) {
            if (!take('-'))
                take('+');
            skipDigits();
        }
        const QByteArrayView number = QByteArrayView(m_text).sliced(start, m_at - start);
        return m_at > integerEnd ? real(number) : integer(number, negative);
    }

    [[nodiscard]] QVariant integer(QByteArrayView number, bool negative) const
    {
        qlonglong small = 0;
        if (std::from_chars(number.begin(), number.end(), small).ec == std::errc())
            return small;
        qulonglong large = 0;
        if (negative || std::from_chars(number.begin(), number.end(), large).ec != std::errc())
            fail("an integer of more than 64 bits");
        return large;
    }

    [[nodiscard]] QVariant real(QByteArrayView number) const
    {
        double value = 0;
        if (std::from_chars(number.begin(), number.end(), value).ec != std::errc() || !std::isfinite(value))
            fail("a number out of the range of a double");
        return value;
    }

    const QByteArray& m_text;
    qsizetype m_at = 0;
};

} // namespace

JsonReading readJson(const QByteArray& text)
{
    try {
        return {JsonReader(text).readAll(), {}, 0};
    } catch (const Fault& fault) {
        return {{}, QString::fromLatin1(fault.text), fault.offset};
    }
}

} // namespace havrel::cli
