// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/description.h"
#include "foundation/thread_annotations.h"
#include "messaging/protocols.h"
#include "messaging/xpc_connection.h"
#include "messaging/xpc_endpoint.h"
#include "tests/support/awaited.h"

#include <QStringList>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace havrel::tests {

/// A component that answers barriers, and writes down what it is told.
///
/// Threads: any thread.
class TestComponent : public XPCExportedObject, public std::enable_shared_from_this<TestComponent>
{
public:
    /// \param protocol outlives it
    [[nodiscard]] static std::shared_ptr<TestComponent> serving(std::unique_ptr<XPCListener> listener,
                                                                const Protocol& protocol)
    {
        auto component = std::make_shared<TestComponent>();
        component->serve(std::move(listener), protocol);
        return component;
    }

    /// What a message other than the barrier is answered with.
    void answer(const QByteArray& keywordName, const QVariantList& values)
    {
        const MutexLock guard(m_lock);
        m_answers[keywordName] = values;
    }
    [[nodiscard]] XPCEndpoint endpoint() const { return m_listener->endpoint(); }

    /// Waits until it has handled that many barriers, ever.
    [[nodiscard]] bool hasHandledBarriers(std::size_t count) { return m_barriers.first(count).size() >= count; }
    /// The messages but for barriers, as "setUser: (1000)".
    [[nodiscard]] QStringList told() const
    {
        const MutexLock guard(m_lock);
        return m_told;
    }
    void forgetTold()
    {
        const MutexLock guard(m_lock);
        m_told.clear();
    }
    /// The latest connection to it.
    [[nodiscard]] XPCConnectionPtr latest() const
    {
        const MutexLock guard(m_lock);
        return m_latest.lock();
    }

    void received(const XPCMessage& message) override
    {
        QVariantList values;
        {
            const MutexLock guard(m_lock);
            if (message.keywordName != "barrierWithCompletion:")
                m_told << QString::fromLatin1(message.keywordName) + u' ' + descriptionOf(message.values);
            values = m_answers[message.keywordName];
        }
        if (message.reply)
            message.reply(answerTo(message, values));
        if (message.keywordName == "barrierWithCompletion:")
            m_barriers.tell(true);
    }

protected:
    [[nodiscard]] virtual QVariantList answerTo(const XPCMessage& /*message*/, const QVariantList& values)
    {
        return values;
    }

    void serve(std::unique_ptr<XPCListener> listener, const Protocol& protocol)
    {
        m_listener = std::move(listener);
        m_listener->setAcceptor([weak = weak_from_this(), &protocol](const XPCConnectionPtr& connection) {
            const auto self = weak.lock();
            if (!self)
                return false;
            connection->setExportedInterface(std::make_shared<const XPCInterface>(protocol));
            connection->setRemoteObjectInterface(
                std::make_shared<const XPCInterface>(protocols::switchboardSubscribing()));
            connection->setExportedObject(self);
            const MutexLock guard(self->m_lock);
            self->m_latest = connection;
            return true;
        });
        if (m_listener->resume() != 0)
            qFatal("somebody else serves there");
    }

private:
    std::unique_ptr<XPCListener> m_listener;
    Awaited<bool> m_barriers;
    mutable Mutex m_lock;
    std::map<QByteArray, QVariantList> m_answers HAVREL_GUARDED_BY(m_lock);
    QStringList m_told HAVREL_GUARDED_BY(m_lock);
    std::weak_ptr<XPCConnection> m_latest HAVREL_GUARDED_BY(m_lock);
};

/// A switchboard that knows the endpoints that a test publishes, and forwards what the test says.
///
/// Threads: any thread.
class TestSwitchboard final : public TestComponent
{
public:
    [[nodiscard]] static std::shared_ptr<TestSwitchboard> serving(std::unique_ptr<XPCListener> listener)
    {
        auto switchboard = std::make_shared<TestSwitchboard>();
        switchboard->serve(std::move(listener), protocols::switchboardingPrivate());
        return switchboard;
    }

    void publish(const QString& identifier, const XPCEndpoint& endpoint)
    {
        const MutexLock guard(m_lock);
        m_endpoints[identifier] = endpoint;
    }
    /// To the latest connection.
    void forward(const QString& observer, const QString& name, const QStringList& source, const QVariantMap& info)
    {
        if (const XPCConnectionPtr connection = latest())
            connection->remoteObjectProxyWithErrorHandler({})->send(
                "forwardToObserver:notification:fromSource:withInfo:", {observer, name, source, info});
    }

protected:
    QVariantList answerTo(const XPCMessage& message, const QVariantList& values) override
    {
        if (message.keywordName != "queryEndpointForIdentifier:withReply:")
            return values;
        const MutexLock guard(m_lock);
        const auto found = m_endpoints.find(message.values[0].toString());
        if (found == m_endpoints.cend())
            return {QVariant(QVariantList())};
        return {QVariant(QVariantList{found->second.asValue()})};
    }

private:
    Mutex m_lock;
    std::map<QString, XPCEndpoint> m_endpoints HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel::tests
