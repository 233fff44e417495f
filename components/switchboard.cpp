// SPDX-License-Identifier: MIT
#include "components/switchboard.h"

#include "components/switchboard_board.h"
#include "components/switchboard_client.h"
#include "messaging/protocols.h"
#include "messaging/switchboard_names.h"
#include "platform/identity.h"

#include <utility>

namespace havrel {
namespace {

bool accept(const std::shared_ptr<SwitchboardBoard>& board, const XPCConnectionPtr& connection)
{
    const std::optional<uid_t> user = connection->effectiveUserIdentifier();
    if (!user || !board->admits(*user))
        return false;
    const auto client = std::make_shared<SwitchboardClient>(board, connection, *user);
    connection->setExportedInterface(std::make_shared<const XPCInterface>(protocols::switchboardingPrivate()));
    connection->setRemoteObjectInterface(std::make_shared<const XPCInterface>(protocols::switchboardSubscribing()));
    connection->setExportedObject(client);
    connection->setInvalidationHandler([board, number = client->number()] { board->removeClient(number); });
    return true;
}

} // namespace

Switchboard::Switchboard(XPCTransport& transport, SwitchboardSettings settings)
    : m_transport(transport)
    , m_serviceName(settings.serviceName)
    , m_board(std::make_shared<SwitchboardBoard>(platform::identity().effectiveUser(),
                                                 (settings.options & xpc_options::kPrivileged) != 0,
                                                 std::move(settings.startComponent)))
    , m_listener(transport.listenerForService(settings.serviceName, settings.options))
{
}

Switchboard::~Switchboard()
{
    m_listener->invalidate();
}

int Switchboard::start()
{
    m_listener->setAcceptor([board = m_board](const XPCConnectionPtr& each) { return accept(board, each); });
    const int error = m_listener->resume();
    if (error == 0)
        m_transport.postDistributedNotification(switchboard_names::kDidStart, m_serviceName);
    return error;
}

} // namespace havrel
