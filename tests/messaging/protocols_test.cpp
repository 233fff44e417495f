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

constexpr const char* kNoReply = nullptr;

struct TypesRow
{
    const char* keywordName;
    const char* takes;   // types, separated by blanks
    const char* answers; // the same
};

constexpr TypesRow kTypes[] = {
    {"barrierWithCompletion:", "", ""},
    {"queryComponentVersionWithReply:", "", "s"},
    {"queryBuildNumberWithReply:", "", "u"},
    {"didInstallComponent", "", kNoReply},
    {"willUninstallComponent", "", kNoReply},
    {"queryComponentPreferenceForKey:withReply:", "s", "av"},
    {"setComponentPreferenceValue:forKey:withReply:", "av s", "b"},
    {"queryListenerForCommandIdentifier:withInfo:withReply:", "s a{sv}", "a(so)"},
    {"commandPrepare", "", kNoReply},
    {"commandStarted", "", kNoReply},
    {"progressUpdate:", "v", kNoReply},
    {"commandStoppedWithExceptionData:", "av", kNoReply},
    {"doNothingButReply:", "", ""},
    {"publishEndpoint:forIdentifier:", "(so) s", kNoReply},
    {"redactEndpointForIdentifier:", "s", kNoReply},
    {"queryEndpointForIdentifier:withReply:", "s", "a(so)"},
    {"postNotificationName:source:userInfo:", "s as a{sv}", kNoReply},
    {"setUser:", "u", kNoReply},
    {"addProxyObserver:forName:source:", "s s as", kNoReply},
    {"removeObserver:", "s", kNoReply},
    {"removeAllObservers", "", kNoReply},
    {"forwardToObserver:notification:fromSource:withInfo:", "s s as a{sv}", kNoReply},
    {"queryVolatileInfoWithReply:", "", "a{sv}"},
    {"queryRunSummariesWithReply:", "", "a{sv}"},
    {"queryNextScheduledActionInfoWithReply:", "", "aa{sv}"},
    {"queryActionsInfoWithReply:", "", "aa{sv}"},
    {"queryHoldTimeWithReply:", "", "d"},
    {"setHoldTime:", "d", kNoReply},
    {"sabotageScheduleTime:", "d", kNoReply},
    {"setAction:toExecuteAt:", "v d", kNoReply},
    {"setAction:suspended:", "v b", kNoReply},
    {"quickCapture:toRepository:", "aay ay", kNoReply},
    {"launchMetadataService:forCommand:withReply:", "s s", "a(so)"},
    {"queryCanMonitorCommandName:withReply:", "s", "b"},
    {"orderMonitorWindowFront", "", kNoReply},
    {"orderMonitorWindowFrontIfVisible", "", kNoReply},
    {"orderStatusWindowFront", "", kNoReply},
    {"queryStatusWindowHasStatus:", "", "b"},
    {"refreshRecentRepositoryCache", "", kNoReply},
    {"queryRecentlyCapturedRepositoriesWithReply:", "", "aa{sv}"},
    {"queryRepositoriesForItems:withReply:", "aay", "aa{sv}"},
    {"setUserNotificationForType:enabled:", "i b", kNoReply},
    {"queryEnabledUserNotificationForType:withReply:", "i", "b"},
};

TEST(Protocols, DeclareTheTypesOfEveryArgument)
{
    std::size_t declared = 0;
    for (const Protocol* protocol : protocols::all())
        declared += protocol->messages().size();
    EXPECT_EQ(declared, std::size(kTypes));
    for (const TypesRow& row : kTypes) {
        const ProtocolMessage* message = nullptr;
        for (const Protocol* protocol : protocols::all())
            message = message ? message : protocol->messageNamed(row.keywordName);
        ASSERT_NE(message, nullptr) << row.keywordName;
        EXPECT_EQ(message->takes, words(row.takes)) << row.keywordName;
        ASSERT_EQ(message->answers.has_value(), row.answers != kNoReply) << row.keywordName;
        if (row.answers != kNoReply) {
            EXPECT_EQ(*message->answers, words(row.answers)) << row.keywordName;
        }
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
