// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/pasteboard.h"
#include "platform/bus_connection.h"

#include <QByteArrayList>
#include <QString>

#include <chrono>

namespace havrel::cli {

/// The way to the service application, which the bus starts when it does not run.
///
/// Threads: one thread at a time.
class ServiceClient
{
public:
    /// \param deadline for everything: the bus, the start of the service, its answer
    explicit ServiceClient(std::chrono::milliseconds deadline = kDeadline);

    /// Asks for the service \p member (foundation/service_address.h). Waits until the service has accepted it, not for
    /// the work. A service that ends in that moment is asked again, once: a request is answered before it is worked on,
    /// so that one without an answer has not been.
    ///
    /// \return what went wrong, for people; null when it was accepted.
    [[nodiscard]] QString ask(const QByteArray& member, const Pasteboard& pasteboard);

private:
    /// Long enough for a cold start from a slow disk; the bus's own limit for a start is two minutes.
    static constexpr std::chrono::seconds kDeadline{20};

    [[nodiscard]] std::chrono::milliseconds left() const;
    [[nodiscard]] platform::BusReply call(const QByteArray& member, const Pasteboard& pasteboard);

    std::chrono::steady_clock::time_point m_end;
    platform::BusConnection m_bus;
};

/// The pasteboard with the items at \p paths, which may be relative to \p workingFolder, and the caller's activation
/// token, if the environment has one.
///
/// Threads: one thread at a time.
[[nodiscard]] Pasteboard pasteboardOfItems(const QByteArrayList& paths, const QByteArray& workingFolder);

} // namespace havrel::cli
