// SPDX-License-Identifier: MIT
#include "filters/pattern_line.h"

#include <utility>

namespace havrel {
namespace {

constexpr qsizetype kMostLeadingSlashes = 3;

/// Reads one line from left to right.
class LineReader
{
public:
    LineReader(QStringView text, AbsolutePaths absolutePaths)
        : m_text(text)
        , m_absolutePaths(absolutePaths)
    {
    }

    PatternLineReading read()
    {
        m_reading.fault = m_text.isEmpty() ? PatternFault::Incomplete : readComponents();
        if (m_reading.fault == PatternFault::None)
            m_reading.fault = readOptions();
        return std::move(m_reading);
    }

private:
    [[nodiscard]] bool isSlash(qsizetype place) const { return place < m_text.size() && m_text[place] == u'/'; }

    PatternFault readComponents()
    {
        if (const PatternFault fault = readLeadingSlashes(); fault != PatternFault::None)
            return fault;
        while (m_place < m_text.size()) {
            readComponent();
            if (const PatternFault fault = readSeparator(); fault != PatternFault::None)
                return fault;
        }
        return PatternFault::None;
    }

    PatternFault readLeadingSlashes()
    {
        while (isSlash(m_place))
            ++m_place;
        if (m_place == m_text.size())
            return PatternFault::None; // slashes only: they mean nothing, and no component follows
        m_inPatterns = m_place >= 2;
        m_reading.line.absolute = m_place % 2 != 0;
        if (m_reading.line.absolute && m_absolutePaths == AbsolutePaths::Refused)
            return PatternFault::AbsoluteNotPermitted;
        return m_place > kMostLeadingSlashes ? PatternFault::TooManyLeadingSlashes : PatternFault::None;
    }

    void readComponent()
    {
        PatternLine& line = m_reading.line;
        const qsizetype slash = m_text.indexOf(u'/', m_place);
        const qsizetype end = slash < 0 ? m_text.size() : slash;
        if (m_inPatterns)
            line.patternComponents.addIndex(static_cast<quint64>(line.components.size()));
        line.components.append(m_text.sliced(m_place, end - m_place).toString());
        m_place = end;
    }

    /// Reads the slash or two after a component, up to the next component; nothing at the end of the line.
    PatternFault readSeparator()
    {
        if (m_place == m_text.size())
            return PatternFault::None;
        ++m_place;
        if (isSlash(m_place)) {
            m_inPatterns = !m_inPatterns;
            ++m_place;
        }
        if (m_place == m_text.size())
            return PatternFault::TrailingSlashWithoutOptions;
        return isSlash(m_place) ? PatternFault::TripleSlash : PatternFault::None;
    }

    PatternFault readOptions()
    {
        PatternLine& line = m_reading.line;
        m_reading.reachedOptions = true;
        const auto last = static_cast<quint64>(line.components.size()) - 1;
        if (!line.components.isEmpty() && line.patternComponents.containsIndex(last))
            if (const auto options = readPatternOptions(line.components.constLast())) {
                line.options = *options;
                line.components.removeLast();
                line.patternComponents.removeIndex(last);
            }
        return line.components.isEmpty() ? PatternFault::NothingDefined : PatternFault::None;
    }

    QStringView m_text;
    AbsolutePaths m_absolutePaths;
    PatternLineReading m_reading;
    qsizetype m_place = 0;     // of the next unit to read
    bool m_inPatterns = false; // what comes next is a pattern
};

/// Room for the text of \p line.
qsizetype mostUnitsOf(const PatternLine& line)
{
    constexpr qsizetype kMostSlashes = 2;  // before a component, and before the options
    constexpr qsizetype kMostOptions = 25; // the greatest depth, and ":glob"
    qsizetype units = 1 + kMostSlashes + kMostOptions;
    for (const QString& component : line.components)
        units += kMostSlashes + component.size();
    return units;
}

} // namespace

PatternLineReading readPatternLine(QStringView text, AbsolutePaths absolutePaths)
{
    return LineReader{text, absolutePaths}.read();
}

QString canonicalTextOf(const PatternLine& line)
{
    QString text;
    text.reserve(mostUnitsOf(line));
    if (line.absolute)
        text += u'/';
    bool wasPattern = false;
    auto nextPattern = line.patternComponents.begin();
    for (qsizetype i = 0; i < line.components.size(); ++i) {
        const bool isPattern = nextPattern != line.patternComponents.end() && *nextPattern == static_cast<quint64>(i);
        if (isPattern)
            ++nextPattern;
        if (isPattern != wasPattern)
            text += QLatin1StringView{"//"};
        else if (i > 0)
            text += u'/';
        text += line.components[i];
        wasPattern = isPattern;
    }
    if (line.options != PatternOptions{})
        text.append(wasPattern ? QLatin1StringView{"/"} : QLatin1StringView{"//"}).append(textOf(line.options));
    return text;
}

} // namespace havrel
