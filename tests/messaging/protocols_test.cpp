// SPDX-License-Identifier: MIT
#include "messaging/protocols.h"

#include "messaging/protocol.h"
#include "platform/bus_body.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace havrel {
namespace {

struct Row
{
    const char* protocol;
    const char* adopted;  // names, separated by blanks
    const char* messages; // keyword names in the order of their declaration, separated by blanks
};

constexpr Row kProtocols[] = {
    {"HVComponentMessaging", "", "barrierWithCompletion:"},
    {"HVComponentInstalling",
     "",
     "queryComponentVersionWithReply: queryBuildNumberWithReply: didInstallComponent willUninstallComponent"},
    {"HVComponentServing", "HVComponentMessaging HVComponentInstalling", ""},
    {"HVComponentPreferencing",
     "",
     "queryComponentPreferenceForKey:withReply: setComponentPreferenceValue:forKey:withReply:"},
    {"CommandListenerServiceProvider", "", "queryListenerForCommandIdentifier:withInfo:withReply:"},
    {"CommandListenerMessaging",
     "",
     "commandPrepare commandStarted progressUpdate: commandStoppedWithExceptionData: doNothingButReply:"},
    {"ZephronSwitchboarding",
     "HVComponentServing",
     "publishEndpoint:forIdentifier: redactEndpointForIdentifier: queryEndpointForIdentifier:withReply: "
     "postNotificationName:source:userInfo:"},
    {"ZephronSwitchboarding_private",
     "ZephronSwitchboarding",
     "setUser: addProxyObserver:forName:source: removeObserver: removeAllObservers"},
    {"SwitchboardSubscribing", "", "forwardToObserver:notification:fromSource:withInfo:"},
    {"ZephronScheduling",
     "HVComponentServing HVComponentPreferencing CommandListenerServiceProvider",
     "queryVolatileInfoWithReply: queryRunSummariesWithReply: queryNextScheduledActionInfoWithReply: "
     "queryActionsInfoWithReply: queryHoldTimeWithReply: setHoldTime: sabotageScheduleTime: setAction:toExecuteAt: "
     "setAction:suspended: quickCapture:toRepository: launchMetadataService:forCommand:withReply:"},
    {"ZephronMonitoring",
     "HVComponentServing HVComponentPreferencing CommandListenerServiceProvider",
     "queryCanMonitorCommandName:withReply: orderMonitorWindowFront orderMonitorWindowFrontIfVisible "
     "orderStatusWindowFront queryStatusWindowHasStatus: refreshRecentRepositoryCache "
     "queryRecentlyCapturedRepositoriesWithReply: queryRepositoriesForItems:withReply: "
     "setUserNotificationForType:enabled: queryEnabledUserNotificationForType:withReply:"},
};

QByteArrayList words(const char* text)
{
    QByteArrayList result = QByteArray(text).split(' ');
    result.removeAll(QByteArray());
    return result;
}

const Protocol* protocolNamed(const char* name)
{
    const auto& all = protocols::all();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Protocol* each) { return each->name() == name; });
    return found == all.end() ? nullptr : *found;
}

template<class List, class Name>
QByteArrayList namesOf(const List& list, const Name& name)
{
    QByteArrayList result;
    for (const auto& each : list)
        result.append(name(each));
    return result;
}

bool isOneCompleteType(const QByteArray& type)
{
    return !type.isEmpty() && platform::firstCompleteType(type).size() == type.size();
}

TEST(Protocols, AreDeclaredWithEveryMessageInItsOrder)
{
    EXPECT_EQ(protocols::all().size(), std::size(kProtocols));
    for (const Row& row : kProtocols) {
        const Protocol* protocol = protocolNamed(row.protocol);
        ASSERT_NE(protocol, nullptr) << row.protocol;
        EXPECT_EQ(namesOf(protocol->adopted(), [](const Protocol* each) { return each->name(); }), words(row.adopted));
        EXPECT_EQ(namesOf(protocol->messages(), [](const ProtocolMessage& each) { return each.keywordName; }),
                  words(row.messages));
    }
}

/// A keyword name has one colon for each argument; the reply block is the last one.
TEST(Protocols, HaveAnArgumentForEachColon)
{
    for (const Protocol* protocol : protocols::all())
        for (const ProtocolMessage& each : protocol->messages())
            EXPECT_EQ(each.keywordName.count(':'), each.takes.size() + (each.answers ? 1 : 0))
                << each.keywordName.constData();
}

TEST(Protocols, HaveOneCompleteTypeForEachArgument)
{
    for (const Protocol* protocol : protocols::all())
        for (const ProtocolMessage& each : protocol->messages())
            for (const QByteArray& type : each.takes + each.answers.value_or(QByteArrayList()))
                EXPECT_TRUE(isOneCompleteType(type)) << each.keywordName.constData() << ' ' << type.constData();
}

TEST(Protocols, ReplyWhereTheirNameEndsInAReplyBlock)
{
    for (const Protocol* protocol : protocols::all())
        for (const ProtocolMessage& each : protocol->messages()) {
            const bool saysSo = each.keywordName.endsWith("eply:") || each.keywordName.endsWith("ithCompletion:") ||
                                each.keywordName == "queryStatusWindowHasStatus:";
            EXPECT_EQ(each.answers.has_value(), saysSo) << each.keywordName.constData();
        }
}

TEST(Protocols, FindMessagesOfAdoptedProtocolsAndWhoDeclaresThem)
{
    const Protocol& scheduling = protocols::scheduling();
    EXPECT_NE(scheduling.messageNamed("quickCapture:toRepository:"), nullptr);
    EXPECT_EQ(scheduling.declarerOf("quickCapture:toRepository:"), &scheduling);
    EXPECT_EQ(scheduling.declarerOf("barrierWithCompletion:"), &protocols::componentMessaging());
    EXPECT_EQ(scheduling.messageNamed("removeAllObservers"), nullptr);
    EXPECT_EQ(protocols::switchboardingPrivate().declarerOf("publishEndpoint:forIdentifier:"),
              &protocols::switchboarding());
    EXPECT_EQ(protocols::switchboarding().messageNamed("setUser:"), nullptr);
}

} // namespace
} // namespace havrel
