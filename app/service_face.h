// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

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
    /// What a caller is told that comes too late.
    struct Refusal
    {
        const char* error = "org.freedesktop.DBus.Error.ServiceUnknown"; ///< so that it asks once more
        QString text = QStringLiteral("The service has ended");
    };

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

    /// Lets requests wait from here on, until the end: those that come get no answer, and none begins.
    void keepRequests();
    /// Gives the name up for good. Requests that were answered and have not begun are passed on to the next process,
    /// which the bus starts; callers that wait for their answer are sent away with \p refusal. Waits for the bus and
    /// for the next process, at most ten seconds unless the bus itself stands still; does not run the event loop.
    void end(const Refusal& refusal);
    void end() { end(Refusal()); }

private:
    struct Life;
    std::shared_ptr<Life> m_life;
};

} // namespace havrel
