// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/os_version_names.h"

#include <QString>

#include <chrono>

#include <sys/types.h>

namespace havrel {

/// The running process and the operating system under it: identity and privileges, processors, versions.
///
/// Versions and the effective ids are captured once: by `captureNow`, which main calls first, else by the first use of
/// any operation that needs them.
///
/// Threads: any thread, except for what says otherwise.
class Process
{
public:
    Process() = delete;

    /// Captures version and effective ids, anew if it was done before, and forgets the answer of `isSIPEnabled`. To be
    /// called at the start of main, before anything changes the identity or makes a thread.
    static void captureNow();

    /// Processors that this process may run on; at least 1. \selector cpuCount
    [[nodiscard]] static int cpuCount();
    /// How many things to do at once: `cpuCount`, and one more if that is below 5. \selector optimalConcurrentQueueSize
    [[nodiscard]] static int optimalConcurrentQueueSize();
    /// Time since the system was started, suspensions included. A clock that cannot be read ends the process.
    ///
    /// \selector upTimeInterval
    [[nodiscard]] static std::chrono::duration<double> upTimeInterval();

    /// Whether the real user is root. \selector isPrivileged
    [[nodiscard]] static bool isPrivileged();
    /// The effective user as captured. \selector userID
    [[nodiscard]] static uid_t userID();
    /// The effective group as captured. \selector groupID
    [[nodiscard]] static gid_t groupID();
    /// Whether the effective user is the captured one. \selector isRunningAsUser
    [[nodiscard]] static bool isRunningAsUser();
    /// Whether the effective user is root. \selector isRunningAsRoot
    [[nodiscard]] static bool isRunningAsRoot();
    /// Makes the real user and group the effective ones, unless root is effective already. Holds for all threads.
    ///
    /// \return whether root is effective now, which needs a real user that is root.
    /// \selector runAsRoot
    static bool runAsRoot();
    /// Makes the captured user and group the effective ones, if root is effective and was not the captured user. Holds
    /// for all threads.
    ///
    /// \return false if the captured user could not be made the effective one.
    /// \selector runAsUser
    static bool runAsUser();
    /// Does nothing. \selector setAllowRootUser:
    static void setAllowRootUser(bool allow);

    /// The kernel's version; 0 when unavailable. \selector osVersion
    [[nodiscard]] static PackedOSVersion osVersion();
    /// System and kernel for people: "Debian GNU/Linux 12 (bookworm), Linux 6.1.0-18-amd64"; on a system whose releases
    /// are known by name, their prefix and the version.
    ///
    /// \selector readableOSVersion
    [[nodiscard]] static QString readableOSVersion();
    /// The release's code name with a capital: "Bookworm"; "Unknown" where it has none. On a system whose releases are
    /// known by name, theirs.
    ///
    /// \selector osNickname
    [[nodiscard]] static QString osNickname();
    /// Whether `osVersion` is \p first or later, but before \p end.
    ///
    /// \selector isOrLaterThanOSVersion:butBeforeOSVersion:
    [[nodiscard]] static bool isOrLaterThanOSVersion(PackedOSVersion first, PackedOSVersion end);

    // What these releases brought is there on every system that this program runs on.
    [[nodiscard]] static bool isTigerOrLater() { return true; }        ///< \selector isTigerOrLater
    [[nodiscard]] static bool isLeopardOrLater() { return true; }      ///< \selector isLeopardOrLater
    [[nodiscard]] static bool isSnowLeopardOrLater() { return true; }  ///< \selector isSnowLeopardOrLater
    [[nodiscard]] static bool isLionOrLater() { return true; }         ///< \selector isLionOrLater
    [[nodiscard]] static bool isMountainLionOrLater() { return true; } ///< \selector isMountainLionOrLater
    [[nodiscard]] static bool isMavericksOrLater() { return true; }    ///< \selector isMavericksOrLater
    [[nodiscard]] static bool isYosemiteOrLater() { return true; }     ///< \selector isYosemiteOrLater
    [[nodiscard]] static bool isElCapitanOrLater() { return true; }    ///< \selector isElCapitanOrLater
    [[nodiscard]] static bool isSierraOrLater() { return true; }       ///< \selector isSierraOrLater
    [[nodiscard]] static bool isHighSierraOrLater() { return true; }   ///< \selector isHighSierraOrLater

    // Captured. Linux offers what these releases brought; a system of named releases does from that release on.
    [[nodiscard]] static bool isMojaveOrLater();   ///< \selector isMojaveOrLater
    [[nodiscard]] static bool isCatalinaOrLater(); ///< \selector isCatalinaOrLater
    [[nodiscard]] static bool isBigSurOrLater();   ///< \selector isBigSurOrLater
    [[nodiscard]] static bool isMontereyOrLater(); ///< \selector isMontereyOrLater
    [[nodiscard]] static bool isVenturaOrLater();  ///< \selector isVenturaOrLater
    [[nodiscard]] static bool isSonomaOrLater();   ///< \selector isSonomaOrLater

    /// Whether the system protects its own files: what the protection tool tells, no without one. The first call runs
    /// the tool and waits for it, writes a line at Debug, and remembers the answer.
    ///
    /// Threads: the first call from one thread.
    /// \selector isSIPEnabled
    [[nodiscard]] static bool isSIPEnabled();
    /// Which program `isSIPEnabled` asks, with the argument "status"; "/usr/bin/csrutil" unless set. Set before the
    /// first call.
    static void setProtectionTool(const QString& path);
};

} // namespace havrel
