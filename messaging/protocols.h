// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace havrel {

class Protocol;

/// The protocols that the product's components share. Every message is declared, those that this program never sends
/// too, so that the interfaces of both ends match.
///
/// How values travel: paths are `ay` and lists of them `aay`, dictionaries `a{sv}`, endpoints `(so)`; what may be nil
/// is an array of none or one (a source `as`, an endpoint `a(so)`, a dictionary `aa{sv}`, any object `av`); "object" is
/// `v`. A reply block without arguments still is a reply.
///
/// Threads: any thread.
namespace protocols {

[[nodiscard]] const Protocol& componentMessaging();             ///< `HVComponentMessaging`
[[nodiscard]] const Protocol& componentInstalling();            ///< `HVComponentInstalling`
[[nodiscard]] const Protocol& componentServing();               ///< `HVComponentServing`
[[nodiscard]] const Protocol& componentPreferencing();          ///< `HVComponentPreferencing`
[[nodiscard]] const Protocol& commandListenerServiceProvider(); ///< `CommandListenerServiceProvider`
[[nodiscard]] const Protocol& commandListenerMessaging();       ///< `CommandListenerMessaging`
[[nodiscard]] const Protocol& switchboarding();                 ///< `ZephronSwitchboarding`
[[nodiscard]] const Protocol& switchboardingPrivate();          ///< `ZephronSwitchboarding_private`
[[nodiscard]] const Protocol& switchboardSubscribing();         ///< `SwitchboardSubscribing`
[[nodiscard]] const Protocol& scheduling();                     ///< `ZephronScheduling`
[[nodiscard]] const Protocol& monitoring();                     ///< `ZephronMonitoring`

/// All of them, each after those that it adopts.
[[nodiscard]] const std::vector<const Protocol*>& all();

} // namespace protocols
} // namespace havrel
