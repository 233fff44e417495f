// SPDX-License-Identifier: MIT
#include "cli/printable_text.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel::cli {
namespace {

struct NameRow
{
    QByteArray name;
    const char* shown;
};

TEST(PrintableName, IsOneLineThatCannotSteerATerminal)
{
    const std::array rows = {
        NameRow{"plain.txt", "plain.txt"},
        NameRow{"sp ace", "sp ace"},
        NameRow{"", ""},
        NameRow{"\xc3\xa9\xf0\x9f\x98\x80", "\xc3\xa9\xf0\x9f\x98\x80"},
        NameRow{"new\nline", "new\\nline"},
        NameRow{"\t\r", "\\t\\r"},
        NameRow{"\x1b[31m", "\\x1b[31m"},
        NameRow{QByteArray("a\0b", 3), "a\\x00b"},
        NameRow{"\x7f", "\\x7f"},
        NameRow{"bad\xff.txt", "bad\\xff.txt"},
        NameRow{"\xc2\x9b"
                "31m",
                "\\u009b31m"},
        NameRow{"evil\xe2\x80\xaetxt.exe", "evil\\u202etxt.exe"},
        NameRow{"\xef\xbb\xbf", "\\ufeff"},
        NameRow{"\xe2\x80\xa8", "\\u2028"},
        NameRow{"family\xf0\x9f\x91\xa8\xe2\x80\x8d\xf0\x9f\x91\xa9",
                "family\xf0\x9f\x91\xa8\xe2\x80\x8d\xf0\x9f\x91\xa9"},
    };
    for (const NameRow& row : rows)
        EXPECT_EQ(printableName(row.name).toStdString(), row.shown);
}

TEST(PrintableText, ShowsAHighSurrogateThatIsAlone)
{
    EXPECT_EQ(printableText(QString(QChar(0xD800)) + u'a'), "\\ud800a");
}

} // namespace
} // namespace havrel::cli
