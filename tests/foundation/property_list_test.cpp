// SPDX-License-Identifier: MIT
#include "foundation/property_list.h"

#include "foundation/description.h"
#include "tests/support/spelled_value.h"

#include <QUrl>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace havrel {
namespace {

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

QDateTime moment(int year, int month, int day, int milliseconds = 0)
{
    return QDateTime(QDate(year, month, day), QTime(0, 0).addMSecs(milliseconds), Qt::UTC);
}

QVariantList nested(int levels)
{
    QVariantList list;
    for (int i = 1; i < levels; ++i)
        list = QVariantList{QVariant(list)};
    return list;
}

struct ValueCase
{
    const char* label;
    QVariant value;
    bool fitsXML = true;
};

void PrintTo(const ValueCase& each, std::ostream* out)
{
    *out << each.label;
}

class PropertyListValue : public ::testing::TestWithParam<ValueCase>
{
};

TEST_P(PropertyListValue, ComesBackFromBinaryWithItsKind)
{
    const PropertyListWriting written = binaryPropertyList(GetParam().value);
    ASSERT_FALSE(written.error) << written.error->description().toStdString();

    const PropertyListReading read = parsePropertyList(written.bytes);

    EXPECT_FALSE(read.error);
    EXPECT_EQ(read.format, PropertyListFormat::Binary);
    EXPECT_EQ(spelled(read.value), spelled(GetParam().value));
}

TEST_P(PropertyListValue, ComesBackFromXMLOrIsRefused)
{
    const PropertyListWriting written = xmlPropertyList(GetParam().value);
    ASSERT_EQ(!written.error, GetParam().fitsXML);
    ASSERT_EQ(written.bytes.isEmpty(), !GetParam().fitsXML);
    if (!GetParam().fitsXML)
        return;

    const PropertyListReading read = parsePropertyList(written.bytes);

    EXPECT_FALSE(read.error) << read.error->description().toStdString();
    EXPECT_EQ(read.format, PropertyListFormat::XML);
    EXPECT_EQ(spelled(read.value), spelled(GetParam().value)) << written.bytes.toStdString();
}

QVariantList uniqueNumbers(int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i)
        list << qlonglong(i);
    return list;
}

const std::vector<ValueCase>& valueCases()
{
    static const QString kLone = QString(QChar(0xDC80)) + latin("x");
    static const std::vector<ValueCase> kCases{
        {"no", false},
        {"yes", true},
        {"zero", qlonglong(0)},
        {"byte", qlonglong(255)},
        {"two_bytes", qlonglong(256)},
        {"four_bytes", qlonglong(65536)},
        {"eight_bytes", qlonglong(0x100000000)},
        {"minus_one", qlonglong(-1)},
        {"smallest", std::numeric_limits<qlonglong>::min()},
        {"largest_signed", std::numeric_limits<qlonglong>::max()},
        {"first_unsigned", qulonglong(1) << 63},
        {"largest_unsigned", std::numeric_limits<qulonglong>::max()},
        {"one_as_double", 1.0},
        {"minus_zero", -0.0},
        {"fraction", 0.1},
        {"infinity", std::numeric_limits<double>::infinity()},
        {"minus_infinity", -std::numeric_limits<double>::infinity()},
        {"not_a_number", std::numeric_limits<double>::quiet_NaN()},
        {"smallest_double", std::numeric_limits<double>::denorm_min()},
        {"reference_date", moment(2001, 1, 1)},
        {"epoch", moment(1970, 1, 1)},
        {"first_year", moment(1, 1, 1)},
        {"last_year", moment(9999, 12, 31)},
        {"year_before_the_first", moment(-1, 1, 1), false},
        {"year_ten_thousand", moment(10000, 1, 1), false},
        {"empty_data", QByteArray("")},
        {"data", QByteArray("\0\xff\x10", 3)},
        {"much_data", QByteArray(70000, 'x')},
        {"empty_text", latin("")},
        {"text", latin("exclude")},
        {"fifteen_characters", latin("123456789012345")},
        {"markup", latin("<&>\"']]>")},
        {"blanks", latin("  a \t b  ")},
        {"only_blanks", latin("  ")},
        {"newlines", latin("a\nb\r\nc\rd\n")},
        {"only_a_return", latin("\r")},
        {"beyond_ascii", QString::fromUtf8("größer \xF0\x9F\x98\x80")},
        {"latin", QString(QChar(0xE9))},
        {"nul_in_text", QString::fromLatin1("a\0b", 3), false},
        {"control_character", QString(QChar(0x1B)), false},
        {"lone_surrogate", kLone, false},
        {"high_surrogate_at_the_end", QString(QChar(0xD800)), false},
        {"not_a_character", QString(QChar(0xFFFE)), false},
        {"empty_list", QVariantList{}},
        {"empty_map", QVariantMap{}},
        {"list", QVariantList{true, latin("a"), latin("a"), QVariantList{1.5}, QVariantMap{}}},
        {"many_objects", uniqueNumbers(300)},
        {"very_many_objects", uniqueNumbers(70000)},
        {"map", QVariantMap{{latin(""), true}, {latin("b"), QVariantMap{{latin("c"), QVariantList{}}}}}},
        {"nul_in_key", QVariantMap{{QString::fromLatin1("a\0b", 3), true}}, false},
        {"lone_surrogate_in_key", QVariantMap{{kLone, true}}, false},
        {"looks_like_a_reference", QVariantMap{{latin("CF$UID"), latin("1")}}},
        {"uid", QVariant::fromValue(PropertyListUID{7})},
        {"uid_of_two_bytes", QVariant::fromValue(PropertyListUID{256})},
        {"largest_uid", QVariant::fromValue(PropertyListUID{std::numeric_limits<quint64>::max()})},
        {"null_object", nullObject(), false},
        {"deepest", nested(kDeepestPropertyList)},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, PropertyListValue, ::testing::ValuesIn(valueCases()), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(PropertyList, KeepsEveryCodeUnitInBinary)
{
    QString all;
    for (char32_t unit = 0; unit <= 0xFFFF; ++unit)
        all += QChar(static_cast<char16_t>(unit));

    EXPECT_EQ(parsePropertyList(binaryPropertyList(all).bytes).value.toString(), all);
}

TEST(PropertyList, WritesAsXMLExactlyTheCharactersThatItCanReadBack)
{
    for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
        const QString text = latin("a") + QChar(static_cast<char16_t>(unit)) + latin("b");
        const PropertyListWriting written = xmlPropertyList(text);
        if (!written.error) {
            ASSERT_EQ(parsePropertyList(written.bytes).value.toString(), text) << "U+" << std::hex << unsigned(unit);
        }
    }
}

TEST(PropertyList, KeepsMillisecondsOfDatesInBinary)
{
    const QDateTime date = moment(2025, 7, 30, 45'296'789);
    const QDateTime early = moment(1, 1, 1, 1);

    EXPECT_EQ(parsePropertyList(binaryPropertyList(date).bytes).value.toDateTime(), date);
    EXPECT_EQ(parsePropertyList(binaryPropertyList(early).bytes).value.toDateTime(), early);
}

TEST(PropertyList, CutsDatesToTheSecondInXML)
{
    const QDateTime early = moment(1969, 12, 31, 999);

    EXPECT_EQ(parsePropertyList(xmlPropertyList(early).bytes).value.toDateTime(), moment(1969, 12, 31));
}

TEST(PropertyList, WritesDatesOfAnyZoneAsTheSameMoment)
{
    const QDateTime date(QDate(2025, 7, 30), QTime(12, 0), Qt::OffsetFromUTC, 7200);

    EXPECT_EQ(parsePropertyList(binaryPropertyList(date).bytes).value.toDateTime(), date);
    EXPECT_EQ(parsePropertyList(xmlPropertyList(date).bytes).value.toDateTime(), date);
}

TEST(PropertyList, TakesEveryTypeOfNumberAndContainer)
{
    const QVariantList narrow{
        1, 2U, short(3), 1.5F, QVariant::fromValue<signed char>(-4), QVariant::fromValue<uchar>(5)};
    const QVariantHash hash{{latin("a"), QStringList{latin("b")}}};

    EXPECT_EQ(spelled(parsePropertyList(binaryPropertyList(narrow).bytes).value),
              spelled(QVariantList{qlonglong(1), qlonglong(2), qlonglong(3), 1.5, qlonglong(-4), qlonglong(5)}));
    EXPECT_EQ(spelled(parsePropertyList(xmlPropertyList(hash).bytes).value),
              spelled(QVariantMap{{latin("a"), QVariantList{latin("b")}}}));
}

TEST(PropertyList, WritesRecordsOfCapturePreferencesInTheirKnownSizes)
{
    const QVariantMap exclude{{latin("capture"), latin("exclude")}};
    const QVariantMap contents{{latin("capture"), latin("exclude")}, {latin("contents"), true}};
    const QVariantMap ignore{{latin("capture"), latin("ignore")}, {latin("duration"), 23}, {latin("scale"), 1}};
    const QVariantMap scrape{
        {latin("capture"), latin("scrape")}, {latin("contents"), true}, {latin("duration"), 31}, {latin("scale"), 2}};

    EXPECT_EQ(binaryPropertyList(exclude).bytes.size(), 62);
    EXPECT_EQ(binaryPropertyList(contents).bytes.size(), 76);
    EXPECT_EQ(binaryPropertyList(ignore).bytes.size(), 88);
    EXPECT_EQ(binaryPropertyList(scrape).bytes.size(), 102);
}

TEST(PropertyList, CountsAReferenceInXMLAsTheDictionaryThatItIs)
{
    QVariant deep = QVariant::fromValue(PropertyListUID{1});
    for (int i = 1; i < kDeepestPropertyList; ++i)
        deep = QVariantList{deep};

    EXPECT_EQ(spelled(parsePropertyList(xmlPropertyList(deep).bytes).value), spelled(deep));
    EXPECT_TRUE(xmlPropertyList(QVariantList{deep}).error);
    EXPECT_FALSE(binaryPropertyList(QVariantList{deep}).error);
}

TEST(PropertyList, StoresEqualScalarsOnce)
{
    const QByteArray large(1000, 'x');

    const QByteArray bytes = binaryPropertyList(QVariantList{large, large, large}).bytes;

    EXPECT_LT(bytes.size(), 1100);
}

struct RefusedCase
{
    const char* label;
    QVariant value;
    const char* reason;
};

void PrintTo(const RefusedCase& each, std::ostream* out)
{
    *out << each.label;
}

class UnwritableValue : public ::testing::TestWithParam<RefusedCase>
{
};

TEST_P(UnwritableValue, IsReportedByBothFormats)
{
    for (const PropertyListWriting& written :
         {binaryPropertyList(GetParam().value), xmlPropertyList(GetParam().value)}) {
        ASSERT_TRUE(written.error);
        EXPECT_TRUE(written.bytes.isEmpty());
        EXPECT_EQ(written.error->domain(), error_domain::kCocoa);
        EXPECT_EQ(written.error->code(), property_list_error::kWriteInvalid);
        EXPECT_EQ(written.error->localizedDescription(),
                  latin("The value cannot be written as a property list: %1.").arg(latin(GetParam().reason)));
    }
}

const std::vector<RefusedCase>& refusedCases()
{
    static const std::vector<RefusedCase> kCases{
        {"nil", QVariant(), "it holds nil"},
        {"nil_inside", QVariantList{QVariant()}, "it holds nil"},
        {"url", QVariantMap{{latin("a"), QUrl()}}, "it holds a value of the type QUrl"},
        {"invalid_date", QDateTime(), "it holds a date that is invalid or out of range"},
        {"far_date", moment(200'000, 1, 1), "it holds a date that is invalid or out of range"},
        {"too_deep", nested(kDeepestPropertyList + 1), "its containers nest deeper than 64 levels"},
        {"too_many", QVariantList(kMostPropertyListObjects, true), "it holds more than 1000000 values"},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, UnwritableValue, ::testing::ValuesIn(refusedCases()), [](const auto& each) {
    return std::string(each.param.label);
});

} // namespace
} // namespace havrel
