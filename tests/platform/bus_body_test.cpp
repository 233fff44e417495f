// SPDX-License-Identifier: MIT
#include "platform/bus_body.h"

#include "platform/bus_connection.h"
#include "tests/support/private_bus.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

namespace havrel::platform {
namespace {

struct SignatureRow
{
    const char* signature;
    const char* first;
};

constexpr SignatureRow kSignatures[] = {
    {"s", "s"},
    {"sss", "s"},
    {"a{say}", "a{say}"},
    {"asa{sv}", "as"},
    {"a{sa{sv}}i", "a{sa{sv}}"},
    {"(iaay)v", "(iaay)"},
    {"aaaay", "aaaay"},
    {"((i)(s))", "((i)(s))"},
    {"", ""},
    {"a", ""},
    {"a{", ""},
    {"a{s", ""},
    {"a{s}", ""},
    {"a{sss}", ""},
    {"a{vs}", ""},
    {"a{(i)s}", ""},
    {"{sv}", ""},
    {"(", ""},
    {"()", ""},
    {"(s", ""},
    {")", ""},
    {"(s}", ""},
    {"z", ""},
    {"az", ""},
};

TEST(BusSignature, BeginsWithItsFirstCompleteType)
{
    for (const SignatureRow& row : kSignatures)
        EXPECT_EQ(firstCompleteType(row.signature).toByteArray(), row.first) << row.signature;
}

TEST(BusSignature, IsReadToABoundedDepth)
{
    EXPECT_FALSE(firstCompleteType(QByteArray(30, 'a') + 'y').isEmpty());
    EXPECT_TRUE(firstCompleteType(QByteArray(1'000'000, 'a') + 'y').isEmpty());
    EXPECT_TRUE(firstCompleteType(QByteArray(1'000'000, '(')).isEmpty());
}

/// Messages that travel through a bus and come back.
class BusBodies : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(m_connection.open(), 0); }
    /// What arrives of \p body.
    BusReply travelled(const BusBody& body)
    {
        const BusMethod echo{.name = "echo",
                             .takes = body.signature,
                             .answers = body.signature,
                             .call = [](BusRequest request) { (void)request.reply(request.values()); }};
        BusRegistration exported;
        EXPECT_EQ(m_connection.exportInterface("/test", {.name = "com.havrel.Test", .methods = {echo}}, exported), 0);
        return m_connection.callAndWait({.destination = m_connection.uniqueName(),
                                         .path = "/test",
                                         .interface = "com.havrel.Test",
                                         .member = "echo",
                                         .body = body,
                                         .limit = std::chrono::seconds(60)});
    }

    tests::PrivateBus m_bus;
    BusConnection m_connection{{.address = m_bus.address()}};
};

TEST_F(BusBodies, ArriveAsTheyWereSent)
{
    constexpr auto kLowest = std::numeric_limits<qint64>::min();
    constexpr auto kHighest = std::numeric_limits<quint64>::max();
    const QByteArray everyByte = [] {
        QByteArray bytes;
        for (int each = 0; each < 256; ++each)
            bytes += static_cast<char>(each);
        return bytes;
    }();
    const BusBody rows[] = {
        {"", {}},
        {"b", {true}},
        {"yqut", {quint64{255}, quint64{65'535}, quint64{4'294'967'295}, kHighest}},
        {"nix", {qint64{-32'768}, qint64{-2'147'483'648}, kLowest}},
        {"d", {0.1}},
        {"sog", {QStringLiteral("\u00e4\U0001F600"), QStringLiteral("/a/b"), QStringLiteral("a{sv}")}},
        {"ay", {everyByte}},
        {"ay", {QByteArray()}},
        {"as", {QStringList{QStringLiteral("a"), QString()}}},
        {"as", {QStringList()}},
        {"a{say}", {QVariantMap{{QStringLiteral("text/plain"), everyByte}, {QString(), QByteArray()}}}},
        {"a{sv}", {QVariantMap{{QStringLiteral("a"), true}, {QStringLiteral("b"), QStringList{QString()}}}}},
        {"av", {QVariantList{QStringLiteral("a"), quint64{1}, QVariantMap(), QVariantList{false}, everyByte, 0.5}}},
        {"(iaay)", {QVariantList{qint64{1}, QVariantList{everyByte, QByteArray()}}}},
        {"a(so)", {QVariantList{QVariantList{QString(), QStringLiteral("/")}}}},
        {"aai", {QVariantList{QVariantList{}, QVariantList{qint64{1}}}}},
    };
    for (const BusBody& row : rows) {
        const BusReply reply = travelled(row);
        EXPECT_EQ(reply.error, 0) << row.signature.constData() << qPrintable(reply.errorText);
        EXPECT_EQ(reply.values, row.values) << row.signature.constData();
    }
}

TEST_F(BusBodies, GiveVariantsTheTypeThatIsSaid)
{
    const QVariant said = QVariant::fromValue(BusVariant{"(iaay)", QVariantList{1, QVariantList{QByteArray("a")}}});
    const BusReply reply = travelled({"v", {said}});
    EXPECT_EQ(reply.values, (QVariantList{QVariantList{qint64{1}, QVariantList{QByteArray("a")}}}));
}

TEST_F(BusBodies, CarryListsInVariantsAndDictionaries)
{
    const QVariant said = QVariant::fromValue(BusVariant{"as", QStringList{QStringLiteral("a")}});
    EXPECT_EQ(travelled({"v", {said}}).values, (QVariantList{QStringList{QStringLiteral("a")}}));
    const BusReply owners = travelled({"a{sas}", {QVariantMap{{QStringLiteral("k"), QStringList{QString()}}}}});
    EXPECT_EQ(owners.values, (QVariantList{QVariantMap{{QStringLiteral("k"), QStringList{QString()}}}}));
}

TEST_F(BusBodies, AreRefusedWhenValuesDoNotFitTheirTypes)
{
    const QVariant notAType = QVariant::fromValue(BusVariant{"ss", QString()});
    const QVariant misfit = QVariant::fromValue(BusVariant{"i", QString()});
    const BusBody rows[] = {
        {"y", {256}},
        {"y", {-1}},
        {"n", {32'768}},
        {"u", {-1}},
        {"i", {quint64{1} << 31}},
        {"x", {std::numeric_limits<quint64>::max()}},
        {"i", {0.5}},
        {"i", {true}},
        {"i", {QStringLiteral("1")}},
        {"b", {1}},
        {"d", {1}},
        {"s", {QByteArray("a")}},
        {"s", {QVariant()}},
        {"o", {QStringLiteral("a")}},
        {"g", {QStringLiteral("a{")}},
        {"ay", {QStringLiteral("a")}},
        {"ay", {QVariantList{1}}},
        {"as", {QVariantList{1}}},
        {"as", {5}},
        {"a{say}", {QVariantMap{{QStringLiteral("a"), 1}}}},
        {"a{iv}", {QVariantMap()}},
        {"(ii)", {QVariantList{1}}},
        {"(ii)", {QVariantList{1, 2, 3}}},
        {"v", {QVariant()}},
        {"v", {notAType}},
        {"v", {misfit}},
        {"h", {0}},
    };
    for (const BusBody& row : rows) {
        const BusCall call{.destination = m_connection.uniqueName(),
                           .path = "/",
                           .interface = "com.havrel.Test",
                           .member = "none",
                           .body = row};
        const int error = m_connection.send(call);
        EXPECT_TRUE(error == EINVAL || error == ENOTSUP) << row.signature.constData() << " " << error;
    }
    EXPECT_EQ(m_connection.barrier(std::chrono::seconds(60)), 0); // none of them has reached the bus
}

} // namespace
} // namespace havrel::platform
