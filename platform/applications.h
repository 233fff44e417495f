// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <cstdint>

namespace havrel::platform {

/// What an application is asked to open.
struct OpenRequest
{
    QByteArrayList uris;
    /// Goes with the request as the platform data "com.havrel.parameters", type (iaay), where the application is
    /// reached by the bus; a command line has no room for it.
    struct Parameters
    {
        std::int32_t number = 0;
        QByteArrayList items;
    } parameters{};
};

/// The installed applications, known by their ids: the bus name and the name of the desktop file are one. Tests put
/// their own in its place.
///
/// Threads: the main thread only.
class Applications
{
public:
    Applications() = default;
    virtual ~Applications();
    Applications(const Applications&) = delete;
    Applications& operator=(const Applications&) = delete;
    Applications(Applications&&) = delete;
    Applications& operator=(Applications&&) = delete;

    /// Whether the application can be started or reached.
    [[nodiscard]] virtual bool isInstalled(const QByteArray& id) = 0;
    /// Starts the application, or brings the running one to the front. Does not wait for it.
    /// \return 0; ENOENT when it is not installed, EINVAL when its desktop file cannot be made sense of, or what
    ///         kept its program from being executed.
    [[nodiscard]] virtual int launch(const QByteArray& id) = 0;
    /// Lets the application open what \p request names, started before if need be. Does not wait for it.
    /// \return as launch.
    [[nodiscard]] virtual int open(const QByteArray& id, const OpenRequest& request) = 0;
};

/// The way to applications that the message bus starts.
///
/// Threads: the main thread only.
class BusApplications
{
public:
    BusApplications() = default;
    virtual ~BusApplications();
    BusApplications(const BusApplications&) = delete;
    BusApplications& operator=(const BusApplications&) = delete;
    BusApplications(BusApplications&&) = delete;
    BusApplications& operator=(BusApplications&&) = delete;

    /// Whether the name \p id has an owner or the bus can start one. Asks the bus and waits for its answer.
    [[nodiscard]] virtual bool canReach(const QByteArray& id) = 0;
    /// Sends org.freedesktop.Application.Activate, without waiting. \return 0 or an errno value.
    [[nodiscard]] virtual int activate(const QByteArray& id) = 0;
    /// Sends org.freedesktop.Application.Open, without waiting. \return 0 or an errno value.
    [[nodiscard]] virtual int open(const QByteArray& id, const OpenRequest& request) = 0;
};

/// Applications as a desktop knows them: by the bus where they can be reached there, else by the command line of their
/// desktop file.
///
/// \source Desktop Entry Specification 1.5, "D-Bus Activation"
///
/// Threads: the main thread only.
class DesktopApplications final : public Applications
{
public:
    /// \param bus must live longer.
    explicit DesktopApplications(BusApplications& bus)
        : m_bus(bus)
    {
    }

    [[nodiscard]] bool isInstalled(const QByteArray& id) override;
    [[nodiscard]] int launch(const QByteArray& id) override;
    [[nodiscard]] int open(const QByteArray& id, const OpenRequest& request) override;

private:
    BusApplications& m_bus;
};

} // namespace havrel::platform
