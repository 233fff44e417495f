// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <memory>

namespace havrel {

class LoggerRegistry;
class Logr;

enum class EffectiveUser {
    Ordinary,
    Root, ///< stays silent rather than write to the console
};

/// Holds the one logger that the facade forwards to, and chooses it when it is first asked for.
///
/// Choosing can itself log: whatever is logged meanwhile, by the chosen logger's own making or by other threads, goes
/// to the fallback, which is installed before anything else is tried.
///
/// Threads: any thread.
class SharedLogger
{
public:
    SharedLogger(const LoggerRegistry& registry, EffectiveUser user);

    /// The process's own.
    [[nodiscard]] static SharedLogger& ofProcess();

    /// The installed logger; chooses one when there is none. Null for a call from inside the making of the fallback.
    /// \throws Exception when no fallback can be made.
    [[nodiscard]] std::shared_ptr<Logr> get() HAVREL_EXCLUDES(m_lock);
    /// Installs \p logger and closes the one that was installed before.
    void set(const std::shared_ptr<Logr>& logger);
    /// Closes the installed logger and forgets it.
    void close();

private:
    [[nodiscard]] std::shared_ptr<Logr> present() const HAVREL_EXCLUDES(m_lock);
    void choose() HAVREL_REQUIRES(m_choice);
    [[nodiscard]] std::shared_ptr<Logr> makeFallback() const;
    void replaceByFileLogger(const std::shared_ptr<Logr>& fallback);
    bool replace(const std::shared_ptr<Logr>& expected, const std::shared_ptr<Logr>& logger) HAVREL_EXCLUDES(m_lock);
    static void closeAndRetire(std::shared_ptr<Logr> logger);
    static void retire(std::shared_ptr<Logr> logger);

    const LoggerRegistry& m_registry;
    const EffectiveUser m_user;

    RecursiveMutex m_choice; // held by the thread that chooses
    bool m_choosing HAVREL_GUARDED_BY(m_choice) = false;

    // Held only to look at the pointer or to change it, never while anything is logged, made or closed.
    mutable Mutex m_lock;
    std::shared_ptr<Logr> m_logger HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel
