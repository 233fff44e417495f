// SPDX-License-Identifier: MIT
#pragma once

#include "components/switchboard.h"

#include <QList>

#include <memory>
#include <vector>

namespace havrel {

class PublishedComponent;
class Scheduler;

/// The components of the product that this program knows.
enum class ComponentKind { Switchboard, Monitor, Scheduler };

/// A process that is one or more components, until it is told to end by a signal or the bus has gone.
///
/// Threads: the main thread only.
class ComponentProcess
{
public:
    ComponentProcess();
    ~ComponentProcess();
    ComponentProcess(const ComponentProcess&) = delete;
    ComponentProcess& operator=(const ComponentProcess&) = delete;
    ComponentProcess(ComponentProcess&&) = delete;
    ComponentProcess& operator=(ComponentProcess&&) = delete;

    /// Begins to be \p kind; needs an application object.
    ///
    /// \return 0 or an errno value: EEXIST when another process is it already, ENOMEDIUM where there is no session, ...
    [[nodiscard]] int start(ComponentKind kind);

private:
    [[nodiscard]] int startSwitchboard();
    [[nodiscard]] int publish(ComponentKind kind);

    std::unique_ptr<Switchboard> m_switchboard;
    std::shared_ptr<Scheduler> m_scheduler; // connections may outlive it, its captures do not
    std::vector<std::unique_ptr<PublishedComponent>> m_published;
};

/// Runs \p kinds, the switchboard first, until a termination signal comes (then 0 is answered) or the bus goes. Makes
/// the application object that is needed, so there must be none, and no other thread.
///
/// \return the exit status of the process; 1 when one cannot start, which is told on standard error after \p program
///
/// Threads: the main thread only.
[[nodiscard]] int runComponents(const QList<ComponentKind>& kinds, const char* program);

/// The whole of the program \p program, which is \p kind: takes "--help" and "--version" too. \return the exit status
///
/// Threads: the main thread only.
[[nodiscard]] int componentMain(ComponentKind kind, const char* program, int argc, char** argv);

} // namespace havrel
