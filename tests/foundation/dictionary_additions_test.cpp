// SPDX-License-Identifier: MIT
#include "foundation/dictionary_additions.h"

#include "foundation/description.h"
#include "foundation/index_set.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace havrel {
namespace {

const QString kKey = QStringLiteral("key");
constexpr qint64 kMost = std::numeric_limits<qint64>::max();
constexpr qint64 kLeast = std::numeric_limits<qint64>::min();
constexpr quint64 kMostUnsigned = std::numeric_limits<quint64>::max();
constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

struct GetterCase
{
    const char* label;
    QVariant value;
    bool asBool;
    qint64 asInteger;
    quint64 asUnsigned;
    double asDouble;
};

void PrintTo(const GetterCase& each, std::ostream* out)
{
    *out << each.label;
}

class TypedGetters : public ::testing::TestWithParam<GetterCase>
{
};

TEST_P(TypedGetters, AskTheValueForWhatItAnswers)
{
    QVariantMap map;
    if (GetParam().value.isValid())
        map.insert(kKey, GetParam().value);

    EXPECT_EQ(boolForKey(map, kKey), GetParam().asBool);
    EXPECT_EQ(integerForKey(map, kKey), GetParam().asInteger);
    EXPECT_EQ(unsignedIntegerForKey(map, kKey), GetParam().asUnsigned);
    EXPECT_EQ(doubleForKey(map, kKey), GetParam().asDouble);
    EXPECT_EQ(floatForKey(map, kKey), static_cast<float>(GetParam().asDouble));
}

const std::vector<GetterCase>& getterCases()
{
    static const std::vector<GetterCase> kCases{
        // label             value                        bool   integer unsigned double
        {"missing", QVariant(), false, 0, 0, 0},
        {"null", nullObject(), false, 0, 0, 0},
        {"yes", true, true, 1, 1, 1},
        {"no", false, false, 0, 0, 0},
        {"int", 23, true, 23, 23, 23},
        {"signed", qlonglong(-1), true, -1, kMostUnsigned, -1},
        {"unsigned", kMostUnsigned, true, -1, kMostUnsigned, 0x1p64},
        {"half", 0.5, true, 0, 0, 0.5},
        {"negative_fraction", -1.9, true, -1, kMostUnsigned, -1.9},
        {"huge", 1e300, true, kMost, kMostUnsigned, 1e300},
        {"large_real", 0x1.8p63, true, kMost, quint64(3) << 62, 0x1.8p63},
        {"hugely_negative", -1e300, true, kLeast, quint64(1) << 63, -1e300},
        {"infinite", kInfinite, true, kMost, kMostUnsigned, kInfinite},
        {"text_yes", latin("YES"), true, 0, 0, 0},
        {"text_number", latin("23abc"), true, 23, 0, 23},
        {"text_real", latin("1.5"), true, 1, 0, 1.5},
        {"text_empty", QString(), false, 0, 0, 0},
        {"date", QDateTime::currentDateTimeUtc(), false, 0, 0, 0},
        {"data", QByteArray("1"), false, 0, 0, 0},
        {"list", QVariantList{1}, false, 0, 0, 0},
        {"map", QVariantMap{{kKey, 1}}, false, 0, 0, 0},
        {"foreign", QVariant::fromValue(IndexSet{1}), false, 0, 0, 0},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, TypedGetters, ::testing::ValuesIn(getterCases()), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(DictionaryAdditions, ReadWhatIsNoNumberAsNothingButTrue)
{
    const QVariantMap map{{kKey, kNoNumber}};

    EXPECT_TRUE(boolForKey(map, kKey));
    EXPECT_EQ(integerForKey(map, kKey), 0);
    EXPECT_EQ(unsignedIntegerForKey(map, kKey), 0U);
    EXPECT_FALSE(dateFromIntervalForKey(map, kKey));
}

TEST(DictionaryAdditions, TellWhetherAValueIsStored)
{
    const QVariantMap map{{kKey, nullObject()}};

    EXPECT_TRUE(containsKey(map, kKey));
    EXPECT_FALSE(containsKey(map, latin("other")));
}

TEST(DictionaryAdditions, ReadIntervalsAsDates)
{
    const QDateTime second(QDate(2001, 1, 1), QTime(0, 0, 1, 500), Qt::UTC);

    EXPECT_EQ(dateFromIntervalForKey({{kKey, 1.5}}, kKey), second);
    EXPECT_EQ(dateFromIntervalForKey({{kKey, latin("1.5 seconds")}}, kKey), second);
    EXPECT_EQ(dateFromIntervalForKey({{kKey, -86400}}, kKey), QDateTime(QDate(2000, 12, 31), QTime(0, 0), Qt::UTC));
}

TEST(DictionaryAdditions, ReadNoDateFromNothing)
{
    EXPECT_FALSE(dateFromIntervalForKey({}, kKey));
    EXPECT_FALSE(dateFromIntervalForKey({{kKey, 0}}, kKey));
    EXPECT_FALSE(dateFromIntervalForKey({{kKey, -0.0}}, kKey));
    EXPECT_FALSE(dateFromIntervalForKey({{kKey, latin("soon")}}, kKey));
    EXPECT_FALSE(dateFromIntervalForKey({{kKey, 1e300}}, kKey));
    EXPECT_FALSE(dateFromIntervalForKey({{kKey, kInfinite}}, kKey));
}

TEST(DictionaryAdditions, AnswerOnlyStringsAsStrings)
{
    EXPECT_EQ(stringForKey({{kKey, latin("a")}}, kKey), latin("a"));
    EXPECT_EQ(stringForKey({{kKey, QString()}}, kKey), QString());
    EXPECT_EQ(stringForKey({{kKey, 1}}, kKey), std::nullopt);
    EXPECT_EQ(stringForKey({{kKey, QByteArray("a")}}, kKey), std::nullopt);
    EXPECT_EQ(stringForKey({{kKey, nullObject()}}, kKey), std::nullopt);
    EXPECT_EQ(stringForKey({}, kKey), std::nullopt);
}

TEST(DictionaryAdditions, KeepNilAsTheNullObjectAndReadItBack)
{
    QVariantMap map;
    setObjectOrNil(map, QVariant(), kKey);

    EXPECT_TRUE(isNullObject(map.value(kKey)));
    EXPECT_FALSE(objectOrNilForKey(map, kKey).isValid());

    setObjectOrNil(map, 1, kKey);

    EXPECT_EQ(objectOrNilForKey(map, kKey), QVariant(1));
    EXPECT_FALSE(objectOrNilForKey(map, latin("other")).isValid());
}

TEST(DictionaryAdditions, StoreNumbersOfTheirKind)
{
    QVariantMap map;
    setBool(map, true, latin("bool"));
    setInteger(map, -1, latin("integer"));
    setUnsignedInteger(map, kMostUnsigned, latin("unsigned"));
    setDouble(map, 2, latin("double"));

    EXPECT_EQ(map.value(latin("bool")).typeId(), int(QMetaType::Bool));
    EXPECT_EQ(map.value(latin("integer")).typeId(), int(QMetaType::LongLong));
    EXPECT_EQ(map.value(latin("unsigned")).typeId(), int(QMetaType::ULongLong));
    EXPECT_EQ(map.value(latin("double")).typeId(), int(QMetaType::Double));
    EXPECT_EQ(integerForKey(map, latin("integer")), -1);
    EXPECT_EQ(unsignedIntegerForKey(map, latin("unsigned")), kMostUnsigned);
}

TEST(DictionaryAdditions, StoreDatesAsIntervals)
{
    const QDateTime date(QDate(2025, 7, 30), QTime(12, 34, 56, 789), Qt::UTC);
    QVariantMap map;
    setDateAsInterval(map, date, kKey);

    EXPECT_EQ(map.value(kKey).typeId(), int(QMetaType::Double));
    EXPECT_EQ(dateFromIntervalForKey(map, kKey), date);

    setDateAsInterval(map, QDateTime(), kKey);

    EXPECT_EQ(map.value(kKey), QVariant(0.0));
}

TEST(DictionaryAdditions, KeepAnImmutableCopyAsItWas)
{
    QVariantMap map{{kKey, 1}};
    const QVariantMap copy = immutableCopy(map);
    map.insert(kKey, 2);

    EXPECT_EQ(copy, (QVariantMap{{kKey, 1}}));
}

TEST(DictionaryAdditions, DescribeThemselvesInOneLine)
{
    const QVariantMap map{{latin("a"), latin("x y")}, {latin("b"), 1}, {latin("c"), nullObject()}};

    EXPECT_EQ(compactDescription(map).toStdString(), "a:\"x y\",b:1,c:<null>");
    EXPECT_EQ(compactDescription(QVariantMap()).toStdString(), "");
}

TEST(DictionaryAdditions, DescribeThemselvesWithTheCallersTexts)
{
    const QVariantMap map{{latin("a"), 1}, {latin("b"), latin("x")}};
    const auto inBraces = [](const QVariant& value) { return u'<' + value.toString() + u'>'; };

    EXPECT_EQ(compactDescriptionKey(map, inBraces, inBraces).toStdString(), "<a>:<1>,<b>:<x>");
    EXPECT_EQ(compactDescriptionKey(map, {}, inBraces).toStdString(), "a:<1>,b:<x>");
    EXPECT_EQ(compactDescriptionKey(map, inBraces, {}).toStdString(), "<a>:1,<b>:\"x\"");
}

} // namespace
} // namespace havrel
