// SPDX-License-Identifier: MIT
#include "filters/pattern_file_lines.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel {
namespace {

struct LinesRow
{
    const char16_t* text;
    const char16_t* lines; // joined with "|"
};

constexpr auto kRows = std::to_array<LinesRow>({
    {u"", u""},
    {u"a", u"a"},
    {u"a\nb", u"a|b"},
    {u"a\n", u"a|"},
    {u"\n\na", u"||a"},
    {u"a\rb\vc\fd\u0085e\u2028f\u2029g", u"a|b|c|d|e|f|g"},
    {u"a\r\nb\r\n\r\nc\r\n", u"a|b||c|"},
    {u"a\n\rb", u"a||b"},
    {u"a\r\r\nb", u"a||b"},
    {u"a\tb\u001cc\u200bd", u"a\tb\u001cc\u200bd"},
});

TEST(LinesOfPatternFile, EndAtEveryNewline)
{
    for (const LinesRow& row : kRows)
        EXPECT_EQ(linesOfPatternFile(QString::fromUtf16(row.text)).join(u'|').toStdString(),
                  QString::fromUtf16(row.lines).toStdString());
}

} // namespace
} // namespace havrel
