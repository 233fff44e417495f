// SPDX-License-Identifier: MIT
#include "components/switchboard_client.h"

#include "components/switchboard_board.h"
#include "diagnostics/logr.h"
#include "foundation/dispatch.h"

#include <utility>

namespace havrel {
namespace {

std::optional<QString> textOrNone(const QVariant& value)
{
    const QStringList texts = value.toStringList();
    return texts.isEmpty() ? std::nullopt : std::optional(texts.constFirst());
}

QStringList asValue(const std::optional<QString>& text)
{
    return text ? QStringList{*text} : QStringList();
}

/// Does not keep the connection: that ends when its other end does.
NotificationRelay::Forward forwardingTo(const XPCConnectionPtr& connection)
{
    return [weak = std::weak_ptr(connection)](const QString& observer, const RelayedNotification& each) {
        const XPCConnectionPtr live = weak.lock();
        if (!live)
            return;
        runAtWall([&] {
            live->remoteObjectProxyWithErrorHandler({})->send(
                "forwardToObserver:notification:fromSource:withInfo:",
                {observer, each.name, asValue(each.source), each.userInfo});
        });
    };
}

} // namespace

SwitchboardClient::SwitchboardClient(std::shared_ptr<SwitchboardBoard> board,
                                     const XPCConnectionPtr& connection,
                                     uid_t user)
    : m_board(std::move(board))
    , m_user(user)
    , m_number(m_board->addClient(user, forwardingTo(connection)))
{
    handleEndpoints();
    handleObservers();
    on("setUser:",
       [this](const XPCMessage& each) { m_board->setUser(m_number, m_user, each.values[0].value<uid_t>()); });
}

void SwitchboardClient::handleEndpoints()
{
    on("publishEndpoint:forIdentifier:", [this](const XPCMessage& each) { publish(each.values); });
    on("redactEndpointForIdentifier:",
       [this](const XPCMessage& each) { m_board->redact(m_number, each.values[0].toString()); });
    on("queryEndpointForIdentifier:withReply:", [this](const XPCMessage& each) { query(each); });
}

void SwitchboardClient::handleObservers()
{
    on("addProxyObserver:forName:source:", [this](const XPCMessage& each) {
        m_board->addObserver(
            m_number, each.values[0].toString(), each.values[1].toString(), textOrNone(each.values[2]));
    });
    on("removeObserver:",
       [this](const XPCMessage& each) { m_board->removeObserver(m_number, each.values[0].toString()); });
    on("removeAllObservers", [this](const XPCMessage&) { m_board->removeAllObservers(m_number); });
    on("postNotificationName:source:userInfo:", [this](const XPCMessage& each) { post(each.values); });
}

void SwitchboardClient::publish(const QVariantList& values)
{
    const QString identifier = values[1].toString();
    if (const std::optional<XPCEndpoint> endpoint = XPCEndpoint::fromValue(values[0]))
        m_board->publish(m_number, m_user, identifier, *endpoint);
    else
        Logr::log(LogClassification::Warning, QStringLiteral("\"%1\" publishes no endpoint").arg(identifier));
}

void SwitchboardClient::query(const XPCMessage& message)
{
    const std::optional<XPCEndpoint> endpoint = m_board->endpointOf(message.values[0].toString());
    message.reply({QVariant(endpoint ? QVariantList{endpoint->asValue()} : QVariantList())});
}

void SwitchboardClient::post(const QVariantList& values)
{
    m_board->post(m_user, {values[0].toString(), textOrNone(values[1]), values[2].toMap()});
}

} // namespace havrel
