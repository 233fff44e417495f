// SPDX-License-Identifier: MIT
// The command line of a desktop entry.
#include "platform/desktop_entry.h"

namespace havrel::platform {
namespace {

constexpr QByteArrayView kFileScheme = "file://";

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\n';
}

/// Takes a command line apart: blanks separate words, double quotes keep them together.
class WordSplitter
{
public:
    explicit WordSplitter(QByteArrayView line)
        : m_rest(line)
    {
    }

    /// None when the line ends inside a quote or behind a backslash.
    std::optional<QByteArrayList> words()
    {
        QByteArrayList words;
        for (skipBlanks(); !m_rest.isEmpty(); skipBlanks()) {
            words.append(QByteArray());
            while (!m_rest.isEmpty() && !isBlank(m_rest.front()))
                if (!(take() == '"' ? takeQuoted(words.last()) : takePlain(words.last())))
                    return std::nullopt;
        }
        return words;
    }

private:
    void skipBlanks()
    {
        while (!m_rest.isEmpty() && isBlank(m_rest.front()))
            take();
    }
    char take()
    {
        m_last = m_rest.front();
        m_rest = m_rest.sliced(1);
        return m_last;
    }
    /// Reserved characters are to be quoted; a shell's way with a bare backslash is what people expect.
    bool takePlain(QByteArray& word)
    {
        if (m_last == '\\' && m_rest.isEmpty())
            return false;
        word += m_last == '\\' ? take() : m_last;
        return true;
    }
    bool takeQuoted(QByteArray& word)
    {
        constexpr QByteArrayView kEscapable = "\"`$\\";
        while (!m_rest.isEmpty()) {
            if (take() == '"')
                return true;
            const bool escape = m_last == '\\' && !m_rest.isEmpty() && kEscapable.contains(m_rest.front());
            word += escape ? take() : m_last;
        }
        return false;
    }

    QByteArrayView m_rest;
    char m_last = 0; // what was taken last
};

/// The path of a file URI as a program takes it; any other URI stays as it is.
QByteArray argumentOf(const QByteArray& uri)
{
    return uri.startsWith(kFileScheme) ? QByteArray::fromPercentEncoding(uri.sliced(kFileScheme.size())) : uri;
}

/// Fills field codes in.
class FieldCodes
{
public:
    FieldCodes(const DesktopEntry& entry, const QByteArrayList& uris)
        : m_entry(entry)
        , m_uris(uris)
    {
        for (const QByteArray& each : uris)
            m_paths.append(argumentOf(each));
    }

    /// Adds what \p word stands for, which may be no word at all, to \p command.
    bool addWord(const QByteArray& word, QByteArrayList& command)
    {
        if (word.size() == 2 && word[0] == '%' && addWhole(word[1], command))
            return true;
        QByteArray filled;
        for (qsizetype at = 0; at < word.size(); ++at) {
            if (word[at] != '%')
                filled += word[at];
            else if (++at == word.size() || !addInside(word[at], filled))
                return false;
        }
        command.append(filled);
        return true;
    }
    /// What no word had a place for.
    void addRest(QByteArrayList& command) const
    {
        if (!m_filesPlaced)
            command += m_paths;
    }

private:
    static QByteArrayList firstOf(const QByteArrayList& list) { return list.mid(0, 1); }

    /// The codes that stand alone and give any number of words.
    bool addWhole(char code, QByteArrayList& command)
    {
        switch (code) {
        case 'F':
            return place(m_paths, command);
        case 'U':
            return place(m_uris, command);
        case 'f':
            return place(firstOf(m_paths), command);
        case 'u':
            return place(firstOf(m_uris), command);
        case 'i':
            if (!m_entry.icon.isEmpty())
                command << "--icon" << m_entry.icon;
            return true;
        default:
            return isDeprecated(code);
        }
    }
    bool place(const QByteArrayList& words, QByteArrayList& command)
    {
        command += words;
        m_filesPlaced = true;
        return true;
    }

    /// The codes that may stand inside a word.
    bool addInside(char code, QByteArray& filled)
    {
        switch (code) {
        case '%':
            filled += '%';
            return true;
        case 'c':
            filled += m_entry.name;
            return true;
        case 'k':
            filled += m_entry.file;
            return true;
        case 'f':
        case 'u':
            filled += (code == 'f' ? m_paths : m_uris).value(0);
            m_filesPlaced = true;
            return true;
        default:
            return isDeprecated(code);
        }
    }
    /// Removed wherever they stand.
    static bool isDeprecated(char code) { return QByteArrayView("dDnNvm").contains(code); }

    const DesktopEntry& m_entry;
    const QByteArrayList& m_uris;
    QByteArrayList m_paths;
    bool m_filesPlaced = false;
};

} // namespace

std::optional<QByteArrayList> commandOf(const DesktopEntry& entry, const QByteArrayList& uris)
{
    const auto words = WordSplitter(entry.exec).words();
    if (!words || words->isEmpty())
        return std::nullopt;
    FieldCodes codes(entry, uris);
    QByteArrayList command;
    for (const QByteArray& word : *words)
        if (!codes.addWord(word, command))
            return std::nullopt;
    codes.addRest(command);
    return command.isEmpty() || command.first().isEmpty() ? std::nullopt : std::optional(command);
}

} // namespace havrel::platform
