// SPDX-License-Identifier: MIT
#include "foundation/property_list.h"
#include "tests/support/spelled_value.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

QByteArray inPlist(const QByteArray& value)
{
    return "<plist version=\"1.0\">" + value + "</plist>";
}

struct ReadCase
{
    const char* label;
    QByteArray bytes;
    QVariant expected;
};

void PrintTo(const ReadCase& each, std::ostream* out)
{
    *out << each.label;
}

class XMLPropertyList : public ::testing::TestWithParam<ReadCase>
{
};

TEST_P(XMLPropertyList, ReadsWhatOtherWritersWrite)
{
    const PropertyListReading read = parsePropertyList(GetParam().bytes);

    EXPECT_FALSE(read.error) << read.error->description().toStdString();
    EXPECT_EQ(spelled(read.value), spelled(GetParam().expected));
}

const std::vector<ReadCase>& readCases()
{
    const QDateTime noon(QDate(2025, 7, 30), QTime(12, 0, 1), Qt::UTC);
    static const std::vector<ReadCase> kCases{
        {"bare", inPlist("<true/>"), true},
        {"blanks_before", "\n\t <plist><false></false></plist>\n", false},
        {"byte_order_mark", "\xEF\xBB\xBF<plist><true/></plist>", true},
        {"sixteen_bits",
         QByteArray("\xFF\xFE<\0p\0l\0i\0s\0t\0>\0<\0t\0r\0u\0e\0/\0>\0<\0/\0p\0l\0i\0s\0t\0>\0", 46),
         true},
        {"comments", "<!-- a --><plist><!-- b --><true/><!-- c --></plist><!-- d -->", true},
        {"integer_in_blanks", inPlist("<integer> 12\n</integer>"), qlonglong(12)},
        {"integer_with_sign", inPlist("<integer>+12</integer>"), qlonglong(12)},
        {"hexadecimal", inPlist("<integer>0xFF</integer>"), qlonglong(255)},
        {"unsigned", inPlist("<integer>18446744073709551615</integer>"), qulonglong(~quint64(0))},
        {"real_as_integer", inPlist("<real>12</real>"), 12.0},
        {"real_exponent", inPlist("<real>-1e3</real>"), -1000.0},
        {"date", inPlist("<date>2025-07-30T12:00:01Z</date>"), noon},
        {"date_in_blanks", inPlist("<date> 2025-07-30T12:00:01Z\n</date>"), noon},
        {"wrapped_data", inPlist("<data>\n\tYW\n\tJj\n\t</data>"), QByteArray("abc")},
        {"empty_data", inPlist("<data/>"), QByteArray("")},
        {"empty_string", inPlist("<string/>"), QString()},
        {"entities", inPlist("<string>&lt;&amp;&#65;&#x42;</string>"), QStringLiteral("<&AB")},
        {"cdata", inPlist("<string><![CDATA[<a>]]></string>"), QStringLiteral("<a>")},
        {"comment_in_text", inPlist("<string>a<!-- b -->c</string>"), QStringLiteral("ac")},
        {"equal_keys",
         inPlist("<dict><key>a</key><true/><key>a</key><false/></dict>"),
         QVariantMap{{QStringLiteral("a"), false}}},
        {"reference",
         inPlist("<dict><key>CF$UID</key><integer>3</integer></dict>"),
         QVariant::fromValue(PropertyListUID{3})},
        {"negative_is_no_reference",
         inPlist("<dict><key>CF$UID</key><integer>-3</integer></dict>"),
         QVariantMap{{QStringLiteral("CF$UID"), qlonglong(-3)}}},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, XMLPropertyList, ::testing::ValuesIn(readCases()), [](const auto& each) {
    return std::string(each.param.label);
});

struct BrokenCase
{
    const char* label;
    QByteArray bytes;
    const char* fault;
};

void PrintTo(const BrokenCase& each, std::ostream* out)
{
    *out << each.label;
}

class BrokenXMLPropertyList : public ::testing::TestWithParam<BrokenCase>
{
};

TEST_P(BrokenXMLPropertyList, IsRefusedWithASentence)
{
    const PropertyListReading read = parsePropertyList(GetParam().bytes);

    EXPECT_FALSE(read.value.isValid());
    ASSERT_TRUE(read.error);
    EXPECT_EQ(read.error->domain(), error_domain::kCocoa);
    EXPECT_EQ(read.error->code(), property_list_error::kReadCorrupt);
    const QString sentence = read.error->localizedDescription();
    EXPECT_TRUE(sentence.startsWith(QStringLiteral("The property list cannot be read: "))) << sentence.toStdString();
    EXPECT_TRUE(sentence.contains(QString::fromUtf8(GetParam().fault))) << sentence.toStdString();
}

QByteArray nestedArrays(int levels)
{
    return inPlist(QByteArray("<array>").repeated(levels) + QByteArray("</array>").repeated(levels));
}

const std::vector<BrokenCase>& brokenCases()
{
    static const std::vector<BrokenCase> kCases{
        {"no_element", "<", "damaged in line 1"},
        {"no_value", "<plist/>", "it is empty"},
        {"other_root", "<html/>", "begins with “html”"},
        {"value_as_root", "<true/>", "begins with “true”"},
        {"two_values", inPlist("<true/><true/>"), "more than one value"},
        {"two_roots", inPlist("<true/>") + inPlist("<true/>"), "damaged"},
        {"text_behind", inPlist("<true/>") + "x", "damaged"},
        {"text_outside", inPlist("a<true/>"), "text stands outside the values in line 1"},
        {"text_in_list", inPlist("<array>a</array>"), "text stands outside"},
        {"unclosed", "<plist><array><true/>", "damaged"},
        {"unknown_kind", inPlist("\n<number>1</number>"), "“number” in line 2 is no kind of value"},
        {"element_in_text", inPlist("<string>a<b/></string>"), "damaged"},
        {"no_key", inPlist("<dict><true/></dict>"), "a value without a key"},
        {"no_value_for_key", inPlist("<dict><key>a</key></dict>"), "the key “a” has no value"},
        {"empty_integer", inPlist("<integer/>"), "“” is no integer of 64 bits"},
        {"integer_too_large", inPlist("<integer>18446744073709551616</integer>"), "is no integer of 64 bits"},
        {"integer_too_small", inPlist("<integer>-9223372036854775809</integer>"), "is no integer of 64 bits"},
        {"no_integer", inPlist("<integer>1a</integer>"), "“1a” is no integer of 64 bits"},
        {"no_real", inPlist("<real>1,5</real>"), "“1,5” is no real number"},
        {"no_date", inPlist("<date>2025-02-30T00:00:00Z</date>"), "is no date"},
        {"date_without_time", inPlist("<date>2025-02-03</date>"), "is no date"},
        {"date_with_zone", inPlist("<date>2025-02-03T00:00:00+01:00</date>"), "is no date"},
        {"no_data", inPlist("<data>*</data>"), "data is not written in base 64"},
        {"flag_with_text", inPlist("<true>no</true>"), "a truth value holds text"},
        {"bytes_not_utf8", inPlist("<string>\xff\xfe</string>"), "damaged"},
        {"nul", inPlist(QByteArray("<string>a\0b</string>", 20)), "damaged"},
        {"control_reference", inPlist("<string>&#27;</string>"), "damaged"},
        {"too_deep", nestedArrays(kDeepestPropertyList + 1), "nest deeper than 64 levels"},
        {"far_too_deep", nestedArrays(200'000), "nest deeper than 64 levels"},
        {"too_many", inPlist("<array>" + QByteArray("<true/>").repeated(1'000'000) + "</array>"), "more than 1000000"},
        {"entities", "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>", "declares entities"},
        {"external_entity",
         "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/hostname\">]><plist><string>&a;</string></plist>",
         "declares entities"},
        {"unknown_entity", inPlist("<string>&a;</string>"), "damaged"},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, BrokenXMLPropertyList, ::testing::ValuesIn(brokenCases()), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(XMLPropertyListText, IsWrittenTheUsualWay)
{
    const QVariantMap map{{QStringLiteral("a"), QVariantList{true, 1, 1.0}},
                          {QStringLiteral("b"), QStringLiteral("<\r>")}};

    EXPECT_EQ(xmlPropertyList(map).bytes.toStdString(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n"
              "\t<dict>\n"
              "\t\t<key>a</key>\n"
              "\t\t<array>\n"
              "\t\t\t<true/>\n"
              "\t\t\t<integer>1</integer>\n"
              "\t\t\t<real>1</real>\n"
              "\t\t</array>\n"
              "\t\t<key>b</key>\n"
              "\t\t<string>&lt;&#13;&gt;</string>\n"
              "\t</dict>\n"
              "</plist>\n");
}

TEST(XMLPropertyListText, IsRefusedWhereverItIsCut)
{
    const QByteArray whole = xmlPropertyList(QVariantMap{{QStringLiteral("a"), QVariantList{1, 2.5}}}).bytes.trimmed();

    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_TRUE(parsePropertyList(whole.first(length)).error) << "cut to " << length;
}

} // namespace
} // namespace havrel
