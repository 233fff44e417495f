// SPDX-License-Identifier: MIT
#include "messaging/protocols.h"

#include "messaging/protocol.h"

#include <memory>
#include <utility>

namespace havrel::protocols {
namespace {

using Types = QByteArrayList;

/// Never destroyed: messages may be handled by other threads while the process ends.
const Protocol& lasting(const char* name, std::vector<const Protocol*> adopted, std::vector<ProtocolMessage> messages)
{
    return *std::make_unique<const Protocol>(name, std::move(adopted), std::move(messages)).release();
}

} // namespace

const Protocol& componentMessaging()
{
    static const Protocol& s_protocol = lasting("HVComponentMessaging", {}, {{"barrierWithCompletion:", {}, Types{}}});
    return s_protocol;
}

const Protocol& componentInstalling()
{
    static const Protocol& s_protocol = lasting("HVComponentInstalling",
                                                {},
                                                {
                                                    {"queryComponentVersionWithReply:", {}, Types{"s"}},
                                                    {"queryBuildNumberWithReply:", {}, Types{"u"}},
                                                    {"didInstallComponent"},
                                                    {"willUninstallComponent"},
                                                });
    return s_protocol;
}

const Protocol& componentServing()
{
    static const Protocol& s_protocol =
        lasting("HVComponentServing", {&componentMessaging(), &componentInstalling()}, {});
    return s_protocol;
}

const Protocol& componentPreferencing()
{
    static const Protocol& s_protocol =
        lasting("HVComponentPreferencing",
                {},
                {
                    {"queryComponentPreferenceForKey:withReply:", {"s"}, Types{"av"}},
                    {"setComponentPreferenceValue:forKey:withReply:", {"av", "s"}, Types{"b"}},
                });
    return s_protocol;
}

const Protocol& commandListenerServiceProvider()
{
    static const Protocol& s_protocol =
        lasting("CommandListenerServiceProvider",
                {},
                {{"queryListenerForCommandIdentifier:withInfo:withReply:", {"s", "a{sv}"}, Types{"a(so)"}}});
    return s_protocol;
}

const Protocol& commandListenerMessaging()
{
    static const Protocol& s_protocol = lasting("CommandListenerMessaging",
                                                {},
                                                {
                                                    {"commandPrepare"},
                                                    {"commandStarted"},
                                                    {"progressUpdate:", {"v"}},
                                                    {"commandStoppedWithExceptionData:", {"av"}},
                                                    {"doNothingButReply:", {}, Types{}},
                                                });
    return s_protocol;
}

const Protocol& switchboarding()
{
    static const Protocol& s_protocol = lasting("ZephronSwitchboarding",
                                                {&componentServing()},
                                                {
                                                    {"publishEndpoint:forIdentifier:", {"(so)", "s"}},
                                                    {"redactEndpointForIdentifier:", {"s"}},
                                                    {"queryEndpointForIdentifier:withReply:", {"s"}, Types{"a(so)"}},
                                                    {"postNotificationName:source:userInfo:", {"s", "as", "a{sv}"}},
                                                });
    return s_protocol;
}

const Protocol& switchboardingPrivate()
{
    static const Protocol& s_protocol = lasting("ZephronSwitchboarding_private",
                                                {&switchboarding()},
                                                {
                                                    {"setUser:", {"u"}},
                                                    {"addProxyObserver:forName:source:", {"s", "s", "as"}},
                                                    {"removeObserver:", {"s"}},
                                                    {"removeAllObservers"},
                                                });
    return s_protocol;
}

const Protocol& switchboardSubscribing()
{
    static const Protocol& s_protocol =
        lasting("SwitchboardSubscribing",
                {},
                {{"forwardToObserver:notification:fromSource:withInfo:", {"s", "s", "as", "a{sv}"}}});
    return s_protocol;
}

const Protocol& scheduling()
{
    static const Protocol& s_protocol =
        lasting("ZephronScheduling",
                {&componentServing(), &componentPreferencing(), &commandListenerServiceProvider()},
                {
                    {"queryVolatileInfoWithReply:", {}, Types{"a{sv}"}},
                    {"queryRunSummariesWithReply:", {}, Types{"a{sv}"}},
                    {"queryNextScheduledActionInfoWithReply:", {}, Types{"aa{sv}"}}, // none: no action is scheduled
                    {"queryActionsInfoWithReply:", {}, Types{"aa{sv}"}},
                    {"queryHoldTimeWithReply:", {}, Types{"d"}},
                    {"setHoldTime:", {"d"}},
                    {"sabotageScheduleTime:", {"d"}},
                    {"setAction:toExecuteAt:", {"v", "d"}},
                    {"setAction:suspended:", {"v", "b"}},
                    {"quickCapture:toRepository:", {"aay", "ay"}},
                    {"launchMetadataService:forCommand:withReply:", {"s", "s"}, Types{"a(so)"}},
                });
    return s_protocol;
}

const Protocol& monitoring()
{
    static const Protocol& s_protocol =
        lasting("ZephronMonitoring",
                {&componentServing(), &componentPreferencing(), &commandListenerServiceProvider()},
                {
                    {"queryCanMonitorCommandName:withReply:", {"s"}, Types{"b"}},
                    {"orderMonitorWindowFront"},
                    {"orderMonitorWindowFrontIfVisible"},
                    {"orderStatusWindowFront"},
                    {"queryStatusWindowHasStatus:", {}, Types{"b"}},
                    {"refreshRecentRepositoryCache"},
                    {"queryRecentlyCapturedRepositoriesWithReply:", {}, Types{"aa{sv}"}},
                    {"queryRepositoriesForItems:withReply:", {"aay"}, Types{"aa{sv}"}},
                    {"setUserNotificationForType:enabled:", {"i", "b"}},
                    {"queryEnabledUserNotificationForType:withReply:", {"i"}, Types{"b"}},
                });
    return s_protocol;
}

const std::vector<const Protocol*>& all()
{
    static const std::vector<const Protocol*> s_all = {
        &componentMessaging(),
        &componentInstalling(),
        &componentServing(),
        &componentPreferencing(),
        &commandListenerServiceProvider(),
        &commandListenerMessaging(),
        &switchboarding(),
        &switchboardingPrivate(),
        &switchboardSubscribing(),
        &scheduling(),
        &monitoring(),
    };
    return s_all;
}

} // namespace havrel::protocols
