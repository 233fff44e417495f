// SPDX-License-Identifier: MIT
#include "foundation/description.h"

#include "diagnostics/exception.h"
#include "diagnostics/log_line_ident.h"
#include "foundation/error.h"
#include "foundation/index_set.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <array>

namespace havrel {
namespace {

struct ValueCase
{
    const char* label;
    QVariant value;
    QString text;
    QString className;
};

class Description : public ::testing::TestWithParam<ValueCase>
{
};

TEST_P(Description, NamesValueAndClass)
{
    EXPECT_EQ(descriptionOf(GetParam().value), GetParam().text);
    EXPECT_EQ(classNameOf(GetParam().value), GetParam().className);
}

const std::array kValueCases = {
    ValueCase{"nil", {}, u"(null)"_qs, {}},
    ValueCase{"null_object", nullObject(), u"<null>"_qs, u"NSNull"_qs},
    ValueCase{"yes", true, u"1"_qs, u"NSNumber"_qs},
    ValueCase{"no", false, u"0"_qs, u"NSNumber"_qs},
    ValueCase{"integer", -5, u"-5"_qs, u"NSNumber"_qs},
    ValueCase{"unsigned", ~0ULL, u"18446744073709551615"_qs, u"NSNumber"_qs},
    ValueCase{"real", 0.1, u"0.1"_qs, u"NSNumber"_qs},
    ValueCase{"whole_real", 2.0, u"2"_qs, u"NSNumber"_qs},
    ValueCase{"string", u"a b"_qs, u"a b"_qs, u"NSString"_qs},
    ValueCase{"data", QByteArray("A\0B", 3), u"{length = 3, bytes = 0x410042}"_qs, u"NSData"_qs},
    ValueCase{"long_data",
              QByteArray(30, 'a'),
              u"{length = 30, bytes = 0x616161616161616161616161 ... 616161616161616161616161}"_qs,
              u"NSData"_qs},
    ValueCase{"date", QDateTime::fromSecsSinceEpoch(978307200, Qt::UTC), u"2001-01-01 00:00:00 +0000"_qs, u"NSDate"_qs},
    ValueCase{"list", QVariantList{1, u"a"_qs, QVariantList{}}, u"(1, a, ())"_qs, u"NSArray"_qs},
    ValueCase{"map", QVariantMap{{u"b"_qs, 2}, {u"a"_qs, 1}}, u"{a = 1; b = 2}"_qs, u"NSDictionary"_qs},
    ValueCase{"error",
              QVariant::fromValue(Error(u"D"_qs, 3, {{error_key::kLocalizedDescription, u"no"_qs}})),
              u"Error Domain=D Code=3 \"no\" UserInfo={NSLocalizedDescription = no}"_qs,
              u"NSError"_qs},
    ValueCase{"index_set", QVariant::fromValue(IndexSet{1, 2}), u"{ 1-2 }"_qs, u"IndexSet"_qs},
    ValueCase{"line",
              QVariant::fromValue(LogLineIdent::logLineIdentifierFromString(u"6.3"_qs)),
              u"6.3"_qs,
              u"LogLineIdent"_qs},
    ValueCase{"no_line", QVariant::fromValue(LogLineIdentPtr()), u"(null)"_qs, u"LogLineIdent"_qs},
    ValueCase{"exception", QVariant::fromValue(Exception(u"N"_qs, u"r"_qs)), u"<N> r"_qs, u"NSException"_qs},
};

INSTANTIATE_TEST_SUITE_P(Cases, Description, ::testing::ValuesIn(kValueCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(Description, TellsNumbersAndTheNullObject)
{
    EXPECT_TRUE(isNumber(true));
    EXPECT_TRUE(isNumber(1.5));
    EXPECT_FALSE(isNumber(u"1"_qs));
    EXPECT_FALSE(isNumber({}));
    EXPECT_TRUE(isNullObject(nullObject()));
    EXPECT_FALSE(isNullObject({}));
}

TEST(Error, DescribesItselfWithoutBeingTold)
{
    EXPECT_EQ(Error(u"D"_qs, 3).localizedDescription(), u"The operation couldn’t be completed. (D error 3.)"_qs);
    EXPECT_TRUE(Error(u"D"_qs, 3).localizedFailureReason().isNull());
    EXPECT_EQ(Error::posix(13).localizedDescription(), u"The operation couldn’t be completed. Permission denied"_qs);
}

TEST(Error, IsEqualByDomainCodeAndFacts)
{
    EXPECT_EQ(Error(u"D"_qs, 3), Error(u"D"_qs, 3));
    EXPECT_FALSE(Error(u"D"_qs, 3) == Error(u"D"_qs, 4));
    EXPECT_FALSE(Error(u"D"_qs, 3) == Error(u"E"_qs, 3));
    EXPECT_FALSE(Error(u"D"_qs, 3) == Error(u"D"_qs, 3, {{u"k"_qs, 1}}));
}

} // namespace
} // namespace havrel
