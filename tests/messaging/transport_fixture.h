// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"
#include "messaging/reply_queue.h"
#include "messaging/transport_connection.h"
#include "messaging/xpc_connection.h"
#include "tests/messaging/bus_world.h"
#include "tests/messaging/in_process_world.h"
#include "tests/messaging/library_object.h"
#include "tests/support/awaited.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace havrel::tests {

inline constexpr const char* kLibrary = "com.havrel.library.1000";

/// Both ends of a connection to a library, by each transport.
template<class World>
class TransportFixture : public ::testing::Test
{
protected:
    /// What comes out of one message.
    struct Outcome
    {
        std::optional<QVariantList> values;
        std::optional<Error> error;
    };

    /// What acceptors tell of, who may be asked late.
    struct FarSide
    {
        Awaited<XPCConnectionPtr> accepted;
        Awaited<bool> ends;
    };

    void TearDown() override
    {
        m_proxy.reset();
        for (const auto& weak : m_made)
            if (const auto connection = weak.lock())
                endAndWait(*connection);
        for (const XPCConnectionPtr& each : m_accepted.first(m_accepted.count()))
            endAndWait(*each);
    }

    /// Until nothing of it is handled any more: handlers refer to the test.
    static void endAndWait(XPCConnection& connection)
    {
        Awaited<bool> done;
        connection.invalidate();
        dynamic_cast<TransportConnection&>(connection).replyQueue().async([&] { done.tell(true); });
        EXPECT_TRUE(done.one().has_value());
    }

    XPCListener::Acceptor acceptor(XPCInterfacePtr interface)
    {
        return [far = m_far, object = m_object, interface](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(interface);
            connection->setExportedObject(object);
            connection->setRemoteObjectInterface(libraryInterface());
            connection->setInvalidationHandler([far] { far->ends.tell(true); });
            far->accepted.tell(connection);
            return true;
        };
    }

    void serve(LibraryObject::Block block = {}, XPCInterfacePtr interface = libraryInterface())
    {
        m_object = std::make_shared<LibraryObject>(std::move(block));
        m_listener = m_world.server().listenerForService(QString::fromLatin1(kLibrary), xpc_options::kNone);
        m_listener->setAcceptor(acceptor(std::move(interface)));
        ASSERT_EQ(m_listener->resume(), 0);
    }

    void connect(bool resumes = true)
    {
        m_connection = m_world.caller().connectionToService(QString::fromLatin1(kLibrary), xpc_options::kNone);
        m_made.push_back(m_connection);
        m_connection->setRemoteObjectInterface(libraryInterface());
        m_connection->setInvalidationHandler([this] { m_ends.tell(true); });
        if (resumes)
            m_connection->resume();
        m_proxy = m_connection->remoteObjectProxyWithErrorHandler([this](const Error& error) { m_errors.tell(error); });
    }

    void send(const QByteArray& keywordName, const QVariantList& values = {}) { m_proxy->send(keywordName, values); }
    void ask(const QByteArray& keywordName, const QVariantList& values, Awaited<Outcome>& outcomes)
    {
        const auto proxy = m_connection->remoteObjectProxyWithErrorHandler([&](const Error& error) {
            outcomes.tell({{}, error});
        });
        proxy->send(keywordName, values, [&](const QVariantList& answer) { outcomes.tell({answer, {}}); });
    }
    Outcome ask(const QByteArray& keywordName, const QVariantList& values = {})
    {
        Awaited<Outcome> outcomes;
        ask(keywordName, values, outcomes);
        return outcomes.one().value_or(Outcome());
    }
    bool barrier() { return ask("barrierWithCompletion:").values.has_value(); }

    World m_world;
    std::shared_ptr<LibraryObject> m_object;
    std::unique_ptr<XPCListener> m_listener;
    XPCConnectionPtr m_connection;
    std::vector<std::weak_ptr<XPCConnection>> m_made;
    XPCProxyPtr m_proxy;
    Awaited<Error> m_errors;
    Awaited<bool> m_ends;
    const std::shared_ptr<FarSide> m_far = std::make_shared<FarSide>();
    Awaited<XPCConnectionPtr>& m_accepted = m_far->accepted;
    Awaited<bool>& m_farEnds = m_far->ends;
};

using Worlds = ::testing::Types<InProcessWorld, BusWorld, OneProcessBusWorld>;

} // namespace havrel::tests
