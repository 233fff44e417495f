// SPDX-License-Identifier: MIT
#include "cli/property_list_json.h"

#include "cli/json_input.h"
#include "foundation/description.h"
#include "foundation/property_list.h"
#include "tests/support/spelled_value.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace havrel::cli {
namespace {

QVariantMap one(const char* key, const QVariant& value)
{
    return {{QString::fromUtf8(key), value}};
}

QDateTime moment(qint64 milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
}

struct FormRow
{
    const char* label;
    QVariant value;
    const char* json;
};

const std::array kForms = {
    FormRow{"yes", true, "true"},
    FormRow{"number", 23LL, "23"},
    FormRow{"largest", std::numeric_limits<qulonglong>::max(), "18446744073709551615"},
    FormRow{"least", std::numeric_limits<qlonglong>::min(), "-9223372036854775808"},
    FormRow{"real", 1.0, "1.0"},
    FormRow{"infinity", std::numeric_limits<double>::infinity(), R"({"$real":"inf"})"},
    FormRow{"negative_infinity", -std::numeric_limits<double>::infinity(), R"({"$real":"-inf"})"},
    FormRow{"text", QStringLiteral("a\"b"), R"("a\"b")"},
    FormRow{"data", QByteArray("a\0b", 3), R"({"$data":"YQBi"})"},
    FormRow{"empty_data", QByteArray(""), R"({"$data":""})"},
    FormRow{"date", moment(978307200123), R"({"$date":"2001-01-01T00:00:00.123Z"})"},
    FormRow{"reference", QVariant::fromValue(PropertyListUID{7}), R"({"$uid":7})"},
    FormRow{"null_object", nullObject(), "null"},
    FormRow{"list", QVariantList{1LL, QVariant(QVariantList())}, "[1,[]]"},
    FormRow{"empty_dictionary", QVariantMap(), "{}"},
    FormRow{"dictionary_in_key_order",
            QVariantMap{{QStringLiteral("b"), 1LL}, {QStringLiteral("a"), 2LL}},
            R"({"a":2,"b":1})"},
    FormRow{
        "dictionary_that_looks_like_data", one("$data", QStringLiteral("YQ==")), R"({"$dictionary":{"$data":"YQ=="}})"},
    FormRow{"dictionary_that_looks_like_that", one("$dictionary", 1LL), R"({"$dictionary":{"$dictionary":1}})"},
    FormRow{"dictionary_with_two_such_keys",
            QVariantMap{{QStringLiteral("$data"), 1LL}, {QStringLiteral("$date"), 2LL}},
            R"({"$data":1,"$date":2})"},
    FormRow{"nested", one("a", one("$x", QByteArray("y"))), R"({"a":{"$dictionary":{"$x":{"$data":"eQ=="}}}})"},
};

class PropertyListJson : public ::testing::TestWithParam<FormRow>
{
};

TEST_P(PropertyListJson, IsWrittenAndReadBack)
{
    EXPECT_EQ(jsonOfPropertyList(GetParam().value).toStdString(), GetParam().json);
    const PropertyListFromJson again = propertyListOfJson(readJson(GetParam().json).value);

    EXPECT_TRUE(again.fault.isNull()) << again.fault.toStdString();
    EXPECT_EQ(spelled(again.value), spelled(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(Rows, PropertyListJson, ::testing::ValuesIn(kForms), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(PropertyListJsonFaults, AreRefused)
{
    for (const char* json : {R"({"$data":1})",
                             R"({"$data":"?"})",
                             R"({"$data":"YQ"x})",
                             R"({"$date":"2001"})",
                             R"({"$date":978307200})",
                             R"({"$real":"1"})",
                             R"({"$real":1})",
                             R"({"$uid":-1})",
                             R"({"$uid":"1"})",
                             R"({"$uid":1.0})",
                             R"({"$dictionary":1})",
                             R"({"$other":1})",
                             R"([{"a":{"$data":null}}])"}) {
        const JsonReading reading = readJson(json);
        const bool refused = !reading.fault.isNull() || !propertyListOfJson(reading.value).fault.isNull();
        EXPECT_TRUE(refused) << json;
    }
}

TEST(PropertyListJson, KeepsANumberThatIsNone)
{
    EXPECT_EQ(jsonOfPropertyList(std::numeric_limits<double>::quiet_NaN()), R"({"$real":"nan"})");
    EXPECT_TRUE(std::isnan(propertyListOfJson(readJson(R"({"$real":"nan"})").value).value.toDouble()));
}

} // namespace
} // namespace havrel::cli
