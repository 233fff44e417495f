// SPDX-License-Identifier: MIT
#include "platform/bus_connection.h"
#include "tests/support/awaited.h"
#include "tests/support/scripted_bus.h"

#include <gtest/gtest.h>

namespace havrel::platform {
namespace {

using tests::Awaited;
using tests::ScriptedBus;
using tests::WireMessage;

constexpr const char* kPath = "/com/havrel/Service";
constexpr const char* kInterface = "com.havrel.Services";

/// The dictionary {"t": [1, 2]}, as a{say}.
QByteArray dictionaryBytes()
{
    QByteArray entry;
    WireMessage::number(entry, 1);
    entry += QByteArray("t\0", 2);
    WireMessage::number(entry, 2);
    entry += QByteArray("\1\2", 2);
    QByteArray bytes;
    WireMessage::number(bytes, static_cast<quint32>(entry.size()));
    WireMessage::pad(bytes, 8);
    return bytes + entry;
}

QByteArray callOfTheService()
{
    return WireMessage(WireMessage::Call, 7)
        .text(1, 'o', kPath)
        .text(2, 's', kInterface)
        .text(3, 's', "ask")
        .text(6, 's', ":1.1")
        .text(7, 's', ":1.9")
        .body("a{say}", dictionaryBytes())
        .bytes();
}

/// What reaches the handler when \p messages arrive, until the bus hangs up or is hung up on.
std::vector<QVariantList> reached(const QByteArray& messages)
{
    const ScriptedBus bus(messages);
    Awaited<QVariantList> asked;
    Awaited<bool> lost;
    BusConnection connection({.address = bus.address(), .disconnected = [&] { lost.tell(true); }});
    BusRegistration exported;
    const BusMethod ask{.name = "ask", .takes = "a{say}", .call = [&](BusRequest request) {
                            asked.tell(request.values());
                            (void)request.reply();
                        }};
    EXPECT_EQ(connection.open(), 0);
    EXPECT_EQ(connection.exportInterface(kPath, {.name = kInterface, .methods = {ask}}, exported), 0);
    EXPECT_EQ(connection.send({.destination = ":1.9", .path = "/", .interface = "com.havrel", .member = "Ready"}), 0);
    EXPECT_TRUE(lost.one().has_value());
    exported.end();
    return asked.first(0);
}

TEST(BusWire, IsUnderstoodWhereItIsWellFormed)
{
    const QVariantMap dictionary{{QStringLiteral("t"), QByteArray("\1\2")}};
    EXPECT_EQ(reached(callOfTheService()), std::vector<QVariantList>{{dictionary}});
}

TEST(BusWire, EndsTheConnectionWhereItIsNonsense)
{
    const QByteArray call = callOfTheService();
    const QByteArray rows[] = {
        QByteArray(),
        QByteArray("nonsense, and more than a header of it"),
        QByteArray(1'000, '\0'),
        QByteArray(1'000, '\xFF'),
        call.first(20),
        call.chopped(1),
        QByteArray("l\1\0\1\xFF\xFF\xFF\x7F\1\0\0\0\0\0\0\0", 16),
        QByteArray("l\1\0\1\0\0\0\0\1\0\0\0\xFF\xFF\xFF\x7F", 16),
        WireMessage(WireMessage::Call, 0).text(1, 'o', kPath).text(3, 's', "ask").bytes(),
        WireMessage(WireMessage::Call, 8).text(1, 'o', "no path").text(3, 's', "ask").bytes(),
        WireMessage(WireMessage::Call, 8).text(1, 's', kPath).text(3, 'o', "ask").bytes(),
        WireMessage(WireMessage::Call, 8).text(1, 'o', kPath).text(3, 's', "ask").body("a{", "x").bytes(),
        WireMessage(WireMessage::Call, 8).text(1, 'o', kPath).text(3, 's', "ask").body("a{say}", "\xFF").bytes(),
    };
    for (const QByteArray& row : rows)
        EXPECT_TRUE(reached(row).empty());
}

TEST(BusWire, NeverBringsAHandlerWhatItsMethodDoesNotTake)
{
    const QByteArray call = callOfTheService();
    for (qsizetype at = 0; at < call.size(); ++at)
        for (const char other : {'\0', '\xFF', 'a'}) {
            QByteArray changed = call;
            changed[at] = other;
            for (const QVariantList& values : reached(changed + call)) {
                ASSERT_EQ(values.size(), 1) << at;
                ASSERT_EQ(values[0].typeId(), QMetaType::QVariantMap) << at;
                for (const QVariant& each : values[0].toMap())
                    ASSERT_EQ(each.typeId(), QMetaType::QByteArray) << at;
            }
        }
}

} // namespace
} // namespace havrel::platform
