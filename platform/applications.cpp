// SPDX-License-Identifier: MIT
#include "platform/applications.h"

#include "platform/desktop_entries.h"
#include "platform/detached_program.h"

#include <cerrno>

namespace havrel::platform {
namespace {

int launchEntry(const QByteArray& id, const QByteArrayList& uris)
{
    const std::optional<DesktopEntry> entry = findDesktopEntry(id);
    if (!entry)
        return ENOENT;
    const std::optional<QByteArrayList> command = commandOf(*entry, uris);
    if (!command)
        return EINVAL;
    const QByteArray program = findProgram(command->first());
    return program.isEmpty() ? ENOENT : launchDetached(program, command->mid(1), entry->workingPath);
}

} // namespace

Applications::~Applications() = default;
BusApplications::~BusApplications() = default;

bool DesktopApplications::isInstalled(const QByteArray& id)
{
    return m_bus.canReach(id) || findDesktopEntry(id).has_value();
}

int DesktopApplications::launch(const QByteArray& id)
{
    return m_bus.canReach(id) ? m_bus.activate(id) : launchEntry(id, {});
}

int DesktopApplications::open(const QByteArray& id, const OpenRequest& request)
{
    return m_bus.canReach(id) ? m_bus.open(id, request) : launchEntry(id, request.uris);
}

} // namespace havrel::platform
