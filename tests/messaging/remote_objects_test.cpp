// SPDX-License-Identifier: MIT
#include "messaging/remote_objects.h"

#include "diagnostics/exception.h"
#include "messaging/xpc_endpoint.h"
#include "messaging/xpc_error.h"
#include "tests/messaging/transport_fixture.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using tests::Awaited;
using tests::LibraryObject;
using tests::smallLibraryProtocol;

/// A library whose shelves are objects of their own.
template<class World>
class RemoteObject : public tests::TransportFixture<World>
{
protected:
    /// Serves a library that answers with \p shelf.
    void serveWith(const QVariantList& shelf)
    {
        this->serve([shelf](const XPCMessage& message) {
            if (message.keywordName == "shelf:withReply:")
                message.reply({QVariant(shelf)});
            else if (message.reply)
                message.reply({});
        });
        this->connect();
    }
    /// Listens for connections to \p object.
    void exportShelf(const std::shared_ptr<LibraryObject>& object)
    {
        m_shelves = this->m_world.server().anonymousListener();
        m_shelves->setAcceptor([far = this->m_far, ends = m_shelfEnds, object](const XPCConnectionPtr& connection) {
            connection->setExportedInterface(std::make_shared<XPCInterface>(smallLibraryProtocol()));
            connection->setExportedObject(object);
            connection->setInvalidationHandler([ends] { ends->tell(true); });
            far->accepted.tell(connection);
            return true;
        });
        ASSERT_EQ(m_shelves->resume(), 0);
    }
    /// The object that a reply has brought; none when an error came instead.
    std::optional<XPCProxyPtr> askForShelf()
    {
        Awaited<std::optional<XPCProxyPtr>> shelves;
        const auto keep = [&shelves](const QVariantList& values) {
            shelves.tell(values.constFirst().template value<XPCProxyPtr>());
        };
        this->m_proxy->send("shelf:withReply:", {QStringLiteral("novels")}, keep);
        const bool answered = this->barrier();
        return answered && shelves.count() == 1 ? shelves.one().value() : std::nullopt;
    }

    std::unique_ptr<XPCListener> m_shelves;
    const std::shared_ptr<Awaited<bool>> m_shelfEnds = std::make_shared<Awaited<bool>>();
};

TYPED_TEST_SUITE(RemoteObject, tests::Worlds);

TYPED_TEST(RemoteObject, ComesInAReplyAndMayBeSpokenTo)
{
    const auto shelf = std::make_shared<LibraryObject>();
    this->exportShelf(shelf);
    this->serveWith({this->m_shelves->endpoint().asValue()});
    XPCProxyPtr proxy = this->askForShelf().value_or(nullptr);
    ASSERT_TRUE(proxy);
    proxy->send("note:", {7});
    Awaited<bool> handled;
    proxy->send("barrierWithCompletion:", {}, [&](const QVariantList&) { handled.tell(true); });
    ASSERT_TRUE(handled.one().has_value());
    EXPECT_EQ(shelf->noted.first(2)[0].values, QVariantList{qint64{7}});
    EXPECT_THROW(proxy->send("burn"), Exception) << "a shelf does not know that message";
    EXPECT_EQ(this->m_shelfEnds->count(), 0U);
    proxy.reset();
    EXPECT_TRUE(this->m_shelfEnds->one().has_value()) << "its connection ends with the proxy";
    EXPECT_TRUE(this->barrier()) << "that it came by goes on";
}

TYPED_TEST(RemoteObject, IsNullWhereTheOtherEndGivesNone)
{
    this->serveWith({});
    EXPECT_EQ(this->askForShelf(), std::optional<XPCProxyPtr>(nullptr));
}

TYPED_TEST(RemoteObject, IsAnErrorWhereItsEndpointLeadsNowhere)
{
    this->serveWith({XPCEndpoint{"no owner", "/com/havrel/endpoint/1"}.asValue()});
    EXPECT_EQ(this->askForShelf(), std::nullopt);
    EXPECT_EQ(this->m_errors.one().value_or(Error()).code(), xpc_error::kReplyInvalid);
}

TYPED_TEST(RemoteObject, TellsItsFailuresToTheHandlerOfTheProxyThatWasAsked)
{
    this->exportShelf(std::make_shared<LibraryObject>());
    this->serveWith({this->m_shelves->endpoint().asValue()});
    this->m_shelves->invalidate();
    const XPCProxyPtr proxy = this->askForShelf().value_or(nullptr);
    ASSERT_TRUE(proxy);
    proxy->send("barrierWithCompletion:", {}, [](const QVariantList&) { ADD_FAILURE() << "nobody is there"; });
    EXPECT_TRUE(this->m_errors.one().has_value());
    EXPECT_TRUE(this->barrier());
}

} // namespace
} // namespace havrel
