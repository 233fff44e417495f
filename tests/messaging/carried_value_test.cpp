// SPDX-License-Identifier: MIT
#include "messaging/carried_value.h"

#include "platform/bus_body.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using platform::BusVariant;

const QString kText = QStringLiteral("text");

struct Row
{
    const char* type;
    QVariant value;
    std::optional<QVariant> arrives;
};

QVariant nested(int depth)
{
    QVariant result = 1;
    for (int i = 0; i < depth; ++i)
        result = QVariantList{result};
    return result;
}

const std::vector<Row>& rows()
{
    static const std::vector<Row> s_rows = {
        {"s", kText, kText},
        {"s", QByteArray("text"), std::nullopt},
        {"s", QString(QChar(0)), std::nullopt},
        {"s", QString(), QString()},
        {"s", QString(QChar(0xFFFE)) + QChar(0xFDEF), QString(2, QChar::ReplacementCharacter)},
        {"s", QString(QChar(0xD83F)) + QChar(0xDFFF), QString(2, QChar::ReplacementCharacter)},
        {"s", QString(QChar(0xD83D)) + QChar(0xDE00), QString(QChar(0xD83D)) + QChar(0xDE00)},
        {"s", QString(QChar(0xD83D)), QString(QChar::ReplacementCharacter)},
        {"b", true, true},
        {"b", 1, std::nullopt},
        {"d", 0.5, 0.5},
        {"d", 1, std::nullopt},
        {"i", -7, qint64{-7}},
        {"i", qint64{1} << 31, std::nullopt},
        {"u", 7, quint64{7}},
        {"u", -7, std::nullopt},
        {"y", 255U, quint64{255}},
        {"y", 256, std::nullopt},
        {"n", -32'768, qint64{-32'768}},
        {"q", 65'536, std::nullopt},
        {"x", quint64{1} << 63, std::nullopt},
        {"t", quint64{1} << 63, quint64{1} << 63},
        {"t", kText, std::nullopt},
        {"o", QStringLiteral("/com/havrel"), QStringLiteral("/com/havrel")},
        {"o", QStringLiteral("/"), QStringLiteral("/")},
        {"o", QStringLiteral("/a//b"), std::nullopt},
        {"o", QStringLiteral("/a/"), std::nullopt},
        {"o", QStringLiteral("/a b"), std::nullopt},
        {"ay", QByteArray("\0\xff", 2), QByteArray("\0\xff", 2)},
        {"ay", kText, std::nullopt},
        {"aay", QVariantList{QByteArray("/a"), QByteArray("/b")}, QVariantList{QByteArray("/a"), QByteArray("/b")}},
        {"aay", QVariantList{kText}, std::nullopt},
        {"as", QStringList{kText}, QStringList{kText}},
        {"as", QStringList(), QStringList()},
        {"as", QVariantList{kText}, QStringList{kText}},
        {"as", kText, std::nullopt},
        {"as", QVariant(), std::nullopt},
        {"ai", QVariantList{1, 2U}, QVariantList{qint64{1}, qint64{2}}},
        {"(so)", QVariantList{kText, QStringLiteral("/")}, QVariantList{kText, QStringLiteral("/")}},
        {"(so)", QVariantList{kText}, std::nullopt},
        {"(so)", QVariantList{kText, QStringLiteral("/"), 1}, std::nullopt},
        {"a{sv}", QVariantMap{{kText, 1}}, QVariantMap{{kText, qint64{1}}}},
        {"a{sv}", QVariantMap{{kText, QVariant()}}, std::nullopt},
        {"a{sv}", QVariantMap{{QString(QChar(0)), 1}}, std::nullopt},
        {"a{sv}", QVariantList{}, std::nullopt},
        {"v", 3U, quint64{3}},
        {"v", QVariantMap{{kText, true}}, QVariantMap{{kText, true}}},
        {"v", QVariant::fromValue(BusVariant{"y", 7}), quint64{7}},
        {"v", QVariant::fromValue(BusVariant{"yy", 7}), std::nullopt},
        {"v", QVariant::fromValue(BusVariant{"y", 700}), std::nullopt},
        {"v", QVariant(), std::nullopt},
        {"v", nested(60), std::nullopt},
        {"h", 1, std::nullopt},
        {"ss", kText, std::nullopt},
        {"", kText, std::nullopt},
    };
    return s_rows;
}

TEST(CarriedValue, IsWhatArrives)
{
    for (const Row& row : rows()) {
        const std::optional<QVariant> arrives = carriedValue(row.type, row.value);
        EXPECT_EQ(arrives, row.arrives) << row.type;
        if (arrives && row.arrives) {
            EXPECT_EQ(arrives->typeId(), row.arrives->typeId()) << row.type;
        }
    }
}

TEST(CarriedValue, ArrivesAsItIsWhenItIsCarriedOnceMore)
{
    for (const Row& row : rows())
        if (row.arrives) {
            EXPECT_EQ(carriedValue(row.type, *row.arrives), row.arrives) << row.type;
        }
}

TEST(CarriedValue, CountsTheValues)
{
    EXPECT_EQ(carriedValues({}, {}), QVariantList());
    EXPECT_EQ(carriedValues({"s", "b"}, {kText, true}), (QVariantList{kText, true}));
    EXPECT_EQ(carriedValues({"s", "b"}, {kText}), std::nullopt);
    EXPECT_EQ(carriedValues({"s"}, {kText, true}), std::nullopt);
    EXPECT_EQ(carriedValues({"s", "b"}, {true, kText}), std::nullopt);
}

} // namespace
} // namespace havrel
