// SPDX-License-Identifier: MIT
// A program for tests: a component at a switchboard, which does what it is told on standard input, a command a line,
// and answers each with a line. Ends when it is told nothing more.
//
// usage: bus_peer ADDRESS session|system SWITCHBOARD
//
//   publish IDENTIFIER      an endpoint of its own          done | failed
//   query IDENTIFIER                                        found | none | failed
//   observe NAME            under that identifier           done | failed
//   post NAME COUNT         as often, numbered from 0       done | failed
//   hears COUNT             waits for that many             how many it has heard, and the number of the last
//   distribute NAME OBJECT  to everybody                    done | failed
#include "messaging/bus_router.h"
#include "messaging/bus_transport.h"
#include "messaging/protocols.h"
#include "messaging/xpc_endpoint.h"
#include "tests/support/awaited.h"

#include <QVariantMap>

#include <iostream>
#include <map>
#include <string>

namespace havrel {
namespace {

using tests::Awaited;
using Answer = std::optional<QVariantList>;

constexpr const char* kNoBus = "unix:path=/none";

/// The numbers of the notifications.
class Ears final : public XPCExportedObject
{
public:
    void received(const XPCMessage& message) override
    {
        heard.tell(message.values[3].toMap().value(QStringLiteral("number")).toInt());
    }

    Awaited<int> heard;
};

class Peer
{
public:
    Peer(const QByteArray& address, bool isOfMachine, const QString& switchboard)
        : m_kind(isOfMachine ? platform::BusKind::System : platform::BusKind::Session)
        , m_transport({.session = isOfMachine ? kNoBus : address, .system = isOfMachine ? address : kNoBus})
        , m_connection(
              m_transport.connectionToService(switchboard, isOfMachine ? xpc_options::kPrivileged : xpc_options::kNone))
    {
        m_connection->setRemoteObjectInterface(
            std::make_shared<const XPCInterface>(protocols::switchboardingPrivate()));
        m_connection->setExportedInterface(std::make_shared<const XPCInterface>(protocols::switchboardSubscribing()));
        m_connection->setExportedObject(m_ears);
        m_connection->resume();
    }

    QByteArray answerTo(const QByteArrayList& words)
    {
        static const std::map<QByteArray, QByteArray (Peer::*)(const QString&, const QByteArray&)> s_commands = {
            {"publish", &Peer::publish},
            {"query", &Peer::query},
            {"observe", &Peer::observe},
            {"post", &Peer::post},
            {"hears", &Peer::hears},
            {"distribute", &Peer::distribute},
        };
        const auto found = s_commands.find(words.value(0));
        if (found == s_commands.end())
            return "no such command";
        return (this->*found->second)(QString::fromUtf8(words.value(1)), words.value(2));
    }

private:
    [[nodiscard]] Answer ask(const QByteArray& keywordName, const QVariantList& values = {})
    {
        const auto answer = std::make_shared<Awaited<Answer>>();
        const auto proxy =
            m_connection->remoteObjectProxyWithErrorHandler([answer](const Error&) { answer->tell(std::nullopt); });
        proxy->send(keywordName, values, [answer](const QVariantList& each) { answer->tell(each); });
        return answer->one().value_or(std::nullopt);
    }
    void send(const QByteArray& keywordName, const QVariantList& values)
    {
        m_connection->remoteObjectProxyWithErrorHandler({})->send(keywordName, values);
    }
    /// When everything sent before has been handled.
    [[nodiscard]] QByteArray whenHandled() { return ask("barrierWithCompletion:") ? "done" : "failed"; }

    QByteArray publish(const QString& identifier, const QByteArray&)
    {
        m_listener = m_transport.anonymousListener();
        if (m_listener->resume() != 0)
            return "failed";
        send("publishEndpoint:forIdentifier:", {m_listener->endpoint().asValue(), identifier});
        return whenHandled();
    }
    QByteArray query(const QString& identifier, const QByteArray&)
    {
        const Answer answer = ask("queryEndpointForIdentifier:withReply:", {identifier});
        if (!answer)
            return "failed";
        return answer->value(0).toList().isEmpty() ? "none" : "found";
    }
    QByteArray observe(const QString& name, const QByteArray&)
    {
        send("addProxyObserver:forName:source:", {name, name, QStringList()});
        return whenHandled();
    }
    QByteArray post(const QString& name, const QByteArray& count)
    {
        for (int number = 0; number < count.toInt(); ++number)
            send("postNotificationName:source:userInfo:",
                 {name, QStringList(), QVariantMap{{QStringLiteral("number"), number}}});
        return whenHandled();
    }
    QByteArray hears(const QString& count, const QByteArray&)
    {
        const std::vector<int> all = m_ears->heard.first(count.toUInt());
        return QByteArray::number(qsizetype(all.size())) + ' ' + QByteArray::number(all.empty() ? -1 : all.back());
    }
    QByteArray distribute(const QString& name, const QByteArray& object)
    {
        m_transport.postDistributedNotification(name, QString::fromUtf8(object));
        int error = 0;
        const auto router = m_transport.buses().router(m_kind, error);
        return router && router->bus().barrier(std::chrono::minutes(1)) == 0 ? "done" : "failed";
    }

    const platform::BusKind m_kind;
    BusTransport m_transport;
    const XPCConnectionPtr m_connection;
    const std::shared_ptr<Ears> m_ears = std::make_shared<Ears>();
    std::unique_ptr<XPCListener> m_listener;
};

void serve(Peer& peer)
{
    for (std::string line; std::getline(std::cin, line);)
        std::cout << peer.answerTo(QByteArray::fromStdString(line).split(' ')).toStdString() << std::endl;
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    havrel::Peer peer(argv[1], QByteArray(argv[2]) == "system", QString::fromUtf8(argv[3]));
    havrel::serve(peer);
    std::_Exit(0); // what others hold of it ends with the process
}
