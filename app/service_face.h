// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace havrel {

class ServiceRequests;
namespace platform {
class BusConnection;
} // namespace platform

/// The service on the session bus: the object "/com/havrel/Service" with the three services and
/// org.freedesktop.Application, under the name "com.havrel.Service". Callers are answered with nothing as soon as their
/// call has come, and never with an error of ours, unless the process ends already; the work comes after that, on the
/// main queue.
///
/// Threads: the main thread only.
class ServiceFace
{
public:
    /// \param requests must live as long as the main queue runs blocks
    /// \param bus is open, and must live longer
    ServiceFace(ServiceRequests& requests, platform::BusConnection& bus);
    ~ServiceFace();
    ServiceFace(const ServiceFace&) = delete;
    ServiceFace& operator=(const ServiceFace&) = delete;
    ServiceFace(ServiceFace&&) = delete;
    ServiceFace& operator=(ServiceFace&&) = delete;

    /// Serves the object, and only then takes the name. Waits for the bus. Called once.
    ///
    /// \return 0, EEXIST when another process has the name, or another errno value.
    [[nodiscard]] int appear();

    /// Gives the name up before the process ends, so that the bus gives later requests to the next one. Waits for the
    /// bus; does not run the event loop. Tells the supervisor first, who must not start the next one beside us.
    ///
    /// \return whether the process may end. If not, requests came at the last moment: they are about to run on the main
    ///         queue, the name is taken again when nobody else has it yet, and the process goes on living.
    [[nodiscard]] bool leave();

private:
    struct Life;
    std::shared_ptr<Life> m_life;
};

} // namespace havrel
