// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"

#include <QHash>
#include <QString>

#include <functional>
#include <memory>

namespace havrel {

class Logr;

/// How to make a logger of a class; raises or answers null when it cannot be made.
using LoggerFactory = std::function<std::shared_ptr<Logr>()>;

/// Logger classes by name, so that rooms above this one can add theirs.
///
/// Threads: any thread.
class LoggerRegistry
{
public:
    /// The process's own registry: holds `NSLogLogr` and `NullLogr` from the start.
    [[nodiscard]] static LoggerRegistry& shared();

    /// A second class of the same name replaces the first.
    void add(const QString& className, const LoggerFactory& factory) HAVREL_EXCLUDES(m_lock);
    /// A new logger; null when no class of that name is known. Raises what its factory raises.
    [[nodiscard]] std::shared_ptr<Logr> make(const QString& className) const HAVREL_EXCLUDES(m_lock);

private:
    mutable Mutex m_lock;
    QHash<QString, LoggerFactory> m_factories HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel
