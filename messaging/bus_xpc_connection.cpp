// SPDX-License-Identifier: MIT
#include "messaging/bus_xpc_connection.h"

#include "messaging/bus_names.h"
#include "messaging/bus_router.h"
#include "messaging/buses.h"
#include "messaging/interface_description.h"
#include "messaging/reply_threads.h"
#include "messaging/xpc_error.h"
#include "platform/identity.h"

#include <cerrno>

namespace havrel {
namespace {

using platform::BusCall;
using platform::BusKind;
using platform::BusReply;

/// Answers a call of the peer.
class BusDuty final : public ReplyDuty
{
public:
    explicit BusDuty(std::shared_ptr<platform::BusAnswer> answer)
        : m_answer(std::move(answer))
    {
    }

    void answer(const QByteArrayList& types, const QVariantList& values) override
    {
        m_answer->reply({types.join(), values});
    }
    void refuse(Refusal why, const QString& description) override { m_answer->fail(nameOf(why), description); }

private:
    static const char* nameOf(Refusal why)
    {
        switch (why) {
        case Refusal::UnknownMessage:
            return "org.freedesktop.DBus.Error.UnknownMethod";
        case Refusal::WrongTypes:
            return "org.freedesktop.DBus.Error.InvalidArgs";
        case Refusal::NotAnswered:
            break;
        }
        return "com.havrel.Error.NotAnswered";
    }

    const std::shared_ptr<platform::BusAnswer> m_answer;
};

/// Errors that the bus gives for a peer that has gone, or was never there.
bool isOfTheBus(const QByteArray& errorName)
{
    constexpr const char* kNames[] = {"NoReply", "ServiceUnknown", "NameHasNoOwner", "Disconnected"};
    constexpr QByteArrayView kPrefix = "org.freedesktop.DBus.Error.";
    return errorName.startsWith(kPrefix) && std::any_of(std::begin(kNames), std::end(kNames), [&](const char* each) {
               return errorName.sliced(kPrefix.size()) == each;
           });
}

/// What fails one message only; the connection has ended for every other reason.
qint64 codeOf(int errnoValue)
{
    switch (errnoValue) {
    case EINVAL: // it has no shape
    case EMSGSIZE:
        return xpc_error::kConnectionInterrupted;
    case EBADMSG: // its answer cannot be read
    case ENOTSUP:
        return xpc_error::kReplyInvalid;
    default:
        return xpc_error::kConnectionInvalid;
    }
}

Error errorOf(int errnoValue)
{
    return xpcError(codeOf(errnoValue), systemErrorText(errnoValue));
}

Error errorOf(const BusReply& reply)
{
    if (reply.errorName.isEmpty())
        return errorOf(reply.error);
    return xpcError(isOfTheBus(reply.errorName) ? xpc_error::kConnectionInvalid : xpc_error::kReplyInvalid,
                    QString::fromLatin1(reply.errorName) + QStringLiteral(": ") + reply.errorText);
}

} // namespace

BusXPCConnection::BusXPCConnection(std::shared_ptr<Buses> buses, Target target)
    : m_buses(std::move(buses))
    , m_target(std::move(target))
{
}

BusXPCConnection::~BusXPCConnection()
{
    abandon();
}

std::shared_ptr<BusXPCConnection> BusXPCConnection::self()
{
    return std::static_pointer_cast<BusXPCConnection>(shared_from_this());
}

std::shared_ptr<BusXPCConnection>
BusXPCConnection::accepted(const std::shared_ptr<BusRouter>& router, const QByteArray& peer, const QByteArray& path)
{
    auto connection = std::make_shared<BusXPCConnection>(nullptr, Target{.kind = router->kind()});
    (void)connection->setWay({router, peer, path});
    connection->keepOpen();
    return connection;
}

BusXPCConnection::Way BusXPCConnection::way() const
{
    const MutexLock guard(m_wayLock);
    return m_way;
}

/// \return false when the connection has ended meanwhile
bool BusXPCConnection::setWay(Way way)
{
    const MutexLock guard(m_wayLock);
    if (m_isClosed)
        return false;
    m_way = std::move(way);
    return true;
}

std::optional<uid_t> BusXPCConnection::effectiveUserIdentifier() const
{
    const MutexLock guard(m_wayLock);
    return m_isClosed ? std::nullopt : m_user;
}

QString BusXPCConnection::description() const
{
    const Way known = way();
    const QString at = known.peer.isEmpty()
                           ? QStringLiteral("not made yet")
                           : QString::fromLatin1(known.peer) + QLatin1Char(' ') + QString::fromLatin1(known.path);
    const QString name = m_target.serviceName.isNull() ? QString() : QStringLiteral(" to ") + m_target.serviceName;
    return QStringLiteral("connection%1 (%2)").arg(name, at);
}

// ---- making the way

void BusXPCConnection::open()
{
    ReplyThreads::shared().run([connection = self()] {
        const int error = connection->pin();
        if (error == 0)
            connection->opened();
        else
            connection->ended(xpcError(xpc_error::kConnectionInvalid, systemErrorText(error)));
    });
}

/// Binds the connection to the process that owns the name at this moment. \return 0 or an errno value
int BusXPCConnection::pin()
{
    int error = 0;
    std::shared_ptr<BusRouter> router = m_buses->router(m_target.kind, error);
    QByteArray owner;
    if (error == 0)
        error = findOwner(*router, owner);
    if (error == 0 && owner == router->bus().uniqueName())
        router = m_buses->router(m_target.kind, error, Buses::Side::Loopback);
    if (error != 0)
        return error;
    const Way made{router, owner, router->freshPath(prefix())};
    if (!setWay(made))
        return ECANCELED;
    router->addRoute(made.peer, made.path, self());
    return checkPeer();
}

int BusXPCConnection::findOwner(BusRouter& router, QByteArray& owner) const
{
    if (isToEndpoint()) {
        owner = m_target.endpoint.owner;
        return 0;
    }
    const int error = router.bus().ownerOf(bus_names::ofService(m_target.serviceName), owner);
    return error != 0 || !owner.isEmpty() ? error : startOwner(router, owner);
}

/// Has the service started, by its own name or by that of the service that stands for it, and asks again.
int BusXPCConnection::startOwner(BusRouter& router, QByteArray& owner) const
{
    const QByteArray name = bus_names::ofService(m_target.serviceName);
    const QByteArray starter = bus_names::ofStarter(m_target.serviceName);
    int error = router.bus().startService(starter.isEmpty() ? name : starter);
    if (error == 0)
        error = router.bus().ownerOf(name, owner);
    return error == 0 && owner.isEmpty() ? ESRCH : error;
}

QByteArray BusXPCConnection::prefix() const
{
    return isToEndpoint() ? m_target.endpoint.pathPrefix : bus_names::pathOfService(m_target.serviceName);
}

/// The same user's on the session's bus, where nobody else should be; on the machine's bus root's, which vouches for
/// the endpoints that it gives, and those of this user.
bool BusXPCConnection::isRightUser(uid_t user) const
{
    const bool isAccepted = m_buses == nullptr;
    const bool isSame = user == platform::identity().effectiveUser();
    if (m_target.kind == BusKind::Session)
        return isSame;
    return isAccepted || user == 0 || (isToEndpoint() && isSame);
}

int BusXPCConnection::checkPeer()
{
    const Way known = way();
    uid_t user = 0;
    if (const int error = known.router ? known.router->watch(known.peer, user) : ECANCELED; error != 0)
        return error;
    if (!isRightUser(user))
        return EPERM;
    const MutexLock guard(m_wayLock);
    m_user = user;
    return 0;
}

void BusXPCConnection::close()
{
    Way last;
    {
        const MutexLock guard(m_wayLock);
        m_isClosed = true;
        last = std::exchange(m_way, {});
    }
    if (last.router)
        last.router->closeRoute(last.peer, last.path);
}

XPCConnectionPtr BusXPCConnection::connectionTo(const XPCEndpoint& endpoint)
{
    const std::shared_ptr<BusRouter> router = way().router;
    std::shared_ptr<Buses> buses = router ? router->buses() : nullptr;
    if (!buses)
        return nullptr;
    return std::make_shared<BusXPCConnection>(
        std::move(buses), Target{.endpoint = endpoint, .kind = bus_names::busOfEndpoint(endpoint.pathPrefix)});
}

// ---- sending

BusCall BusXPCConnection::callOf(const QByteArray& interface, const QByteArray& member) const
{
    const MutexLock guard(m_wayLock);
    return {.destination = m_way.peer,
            .path = m_way.path,
            .interface = interface,
            .member = member,
            .startsService = false};
}

void BusXPCConnection::carry(const SentMessagePtr& sent)
{
    const std::shared_ptr<BusRouter> router = way().router;
    if (!router)
        return; // it has just ended, and tells all that wait
    BusCall call =
        callOf(bus_names::ofProtocol(sent->declarer->name()), bus_names::ofMessage(sent->message->keywordName));
    call.body = {sent->message->signature, sent->values};
    const std::weak_ptr<TransportConnection> weak = weak_from_this();
    if (!sent->reply) {
        router->bus().post(call, [weak, sent](int error) {
            if (const auto connection = weak.lock())
                connection->messageFailed(sent, errorOf(error));
        });
        return;
    }
    router->bus().call(call, [weak, sent](const BusReply& reply) {
        const auto connection = weak.lock();
        if (connection && reply.error == 0)
            connection->replyArrived(sent, reply.values);
        else if (connection)
            connection->messageFailed(sent, errorOf(reply));
    });
}

void BusXPCConnection::askForAcknowledgement(quint32 count)
{
    const std::shared_ptr<BusRouter> router = way().router;
    if (!router)
        return;
    const BusCall call = callOf(bus_names::kConnectionInterface, bus_names::kHandled);
    // An error is an answer too: peers need not know this message, and answer in order all the same. An error of the
    // bus itself may come inside of the call, which the connection's lock is held for.
    router->bus().call(call, [weak = weak_from_this(), count](const BusReply& reply) {
        const auto tell = [weak, count] {
            if (const auto connection = weak.lock())
                connection->acknowledged(count);
        };
        if (reply.error != 0 && reply.errorName.isEmpty())
            ReplyThreads::shared().run(tell);
        else
            tell();
    });
}

// ---- what arrives

void BusXPCConnection::arrived(const platform::BusTreeCall& call)
{
    if (call.interface == bus_names::kConnectionInterface) {
        replyQueue().async([answer = call.answer, isKnown = call.member == bus_names::kHandled] {
            if (answer && isKnown)
                answer->reply({});
            else if (answer)
                answer->fail("org.freedesktop.DBus.Error.UnknownMethod", QStringLiteral("There is no such method"));
        });
        return;
    }
    if (!call.interface.isEmpty() && !bus_names::protocolOf(call.interface))
        return describe(call);
    messageArrived({.keywordName = bus_names::keywordNameOf(call.member),
                    .values = call.values,
                    .duty = call.answer ? std::make_shared<BusDuty>(call.answer) : nullptr,
                    .protocolName = bus_names::protocolOf(call.interface).value_or(QByteArray()),
                    .signature = call.signature});
}

/// For tools that look at what is served here.
void BusXPCConnection::describe(const platform::BusTreeCall& call)
{
    const XPCInterfacePtr exported = exportedInterface();
    if (call.answer)
        call.answer->reply({"s", {QString::fromUtf8(exported ? introspectionOf(exported->protocol()) : QByteArray())}});
}

} // namespace havrel
