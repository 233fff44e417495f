// SPDX-License-Identifier: MIT
#include "tests/support/in_process_transport.h"

#include "foundation/error.h"
#include "messaging/xpc_error.h"
#include "tests/messaging/library_object.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

const QString kLibrary = QStringLiteral("com.havrel.library");

/// What becomes of one message: its reply, or the code of its error.
struct Outcome
{
    bool replied = false;
    qint64 error = 0;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

class InProcessFaults : public ::testing::Test
{
protected:
    InProcessFaults()
    {
        m_listener->setAcceptor([this](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(libraryInterface());
            connection->setExportedObject(m_object);
            return true;
        });
        EXPECT_EQ(m_listener->resume(), 0);
        connect();
    }
    ~InProcessFaults() override
    {
        m_transport.setStopped(kLibrary, false);
        m_transport.invalidateFromFarSide(kLibrary);
    }

    void connect()
    {
        m_connection = m_transport.connectionToService(kLibrary, xpc_options::kNone);
        m_connection->setRemoteObjectInterface(libraryInterface());
        m_connection->setInvalidationHandler([ends = m_ends] { ends->tell(true); }); // may run when the test has ended
        m_connection->resume();
    }
    void ask(Awaited<Outcome>& outcomes)
    {
        const auto proxy = m_connection->remoteObjectProxyWithErrorHandler([&](const Error& error) {
            outcomes.tell({false, error.code()});
        });
        proxy->send("barrierWithCompletion:", {}, [&](const QVariantList&) { outcomes.tell({true, 0}); });
    }
    std::optional<Outcome> ask()
    {
        Awaited<Outcome> outcomes;
        ask(outcomes);
        return outcomes.one();
    }
    void atNextBarrier(Fault fault) { m_transport.atNextMessage(kLibrary, "barrierWithCompletion:", fault); }

    InProcessTransport m_transport;
    std::shared_ptr<LibraryObject> m_object = std::make_shared<LibraryObject>();
    std::unique_ptr<XPCListener> m_listener = m_transport.listenerForService(kLibrary, xpc_options::kNone);
    XPCConnectionPtr m_connection;
    const std::shared_ptr<Awaited<bool>> m_ends = std::make_shared<Awaited<bool>>();
};

TEST_F(InProcessFaults, AreToldToAHandlerThatComesAfterTheEnd)
{
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    m_transport.invalidateFromFarSide(kLibrary);
    ASSERT_EQ(m_ends->one(), true);
    Awaited<bool> late;

    m_connection->setInvalidationHandler([&late] { late.tell(true); });

    EXPECT_EQ(late.one(), true);
    EXPECT_EQ(m_ends->count(), 1U);
}

TEST_F(InProcessFaults, RefuseAService)
{
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    m_transport.setRefusing(kLibrary, true);
    EXPECT_EQ(ask(), (Outcome{true, 0})) << "what is connected stays so";
    connect();
    EXPECT_EQ(ask(), (Outcome{false, xpc_error::kConnectionInvalid}));
    m_transport.setRefusing(kLibrary, false);
    connect();
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    EXPECT_EQ(m_transport.connectionsMade(kLibrary), 2);
    EXPECT_EQ(m_transport.connectionsMade(InProcessTransport::placeOf(kLibrary, xpc_options::kPrivileged)), 0);
}

TEST_F(InProcessFaults, FailOneMessage)
{
    atNextBarrier(Fault::Error);
    EXPECT_EQ(ask(), (Outcome{false, xpc_error::kConnectionInterrupted}));
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    EXPECT_EQ(m_object->noted.count(), 1U);
}

TEST_F(InProcessFaults, LoseAReply)
{
    Awaited<Outcome> outcomes;
    atNextBarrier(Fault::LostReply);
    ask(outcomes);
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    EXPECT_EQ(outcomes.count(), 0U);
    EXPECT_EQ(m_object->noted.count(), 2U);
    m_connection->invalidate();
    EXPECT_EQ(outcomes.one(), (Outcome{false, xpc_error::kConnectionInvalid}));
}

TEST_F(InProcessFaults, KillTheFarSideBeforeAMessage)
{
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    atNextBarrier(Fault::DeathBefore);
    EXPECT_EQ(ask(), (Outcome{false, xpc_error::kConnectionInvalid}));
    EXPECT_EQ(m_object->noted.count(), 1U);
    EXPECT_TRUE(m_ends->one().has_value());
}

TEST_F(InProcessFaults, KillTheFarSideWithTheReplyInItsHands)
{
    atNextBarrier(Fault::DeathAfterwards);
    EXPECT_EQ(ask(), (Outcome{false, xpc_error::kConnectionInvalid}));
    EXPECT_EQ(m_object->noted.count(), 1U);
    EXPECT_TRUE(m_ends->one().has_value());
}

TEST_F(InProcessFaults, EndAllConnectionsFromTheFarSide)
{
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    EXPECT_EQ(m_transport.connectionsOpen(kLibrary), 1);
    m_transport.invalidateFromFarSide(kLibrary);
    EXPECT_TRUE(m_ends->one().has_value());
    EXPECT_EQ(m_transport.connectionsOpen(kLibrary), 0);
    connect();
    EXPECT_EQ(ask(), (Outcome{true, 0}));
}

TEST_F(InProcessFaults, StopTheFarSideUntilItGoesOn)
{
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    m_transport.setStopped(kLibrary, true);
    Awaited<Outcome> outcomes;
    ask(outcomes);
    const XPCConnectionPtr before = m_connection;
    connect();
    ask(outcomes);
    EXPECT_EQ(m_object->noted.count(), 1U);
    m_transport.setStopped(kLibrary, false);
    EXPECT_EQ(outcomes.first(2), (std::vector<Outcome>{{true, 0}, {true, 0}}));
    before->invalidate();
}

TEST_F(InProcessFaults, EndAConnectionToAStoppedFarSide)
{
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    m_transport.setStopped(kLibrary, true);
    Awaited<Outcome> outcomes;
    ask(outcomes);
    m_connection->invalidate();
    EXPECT_EQ(outcomes.one(), (Outcome{false, xpc_error::kConnectionInvalid}));
}

TEST_F(InProcessFaults, LetAServiceBeAnotherUsers)
{
    m_transport.setUser(kLibrary, 12345);
    EXPECT_EQ(ask(), (Outcome{true, 0}));
    EXPECT_EQ(m_connection->effectiveUserIdentifier(), 12345U);
}

} // namespace
} // namespace havrel::tests
