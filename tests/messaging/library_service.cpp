// SPDX-License-Identifier: MIT
// A program for tests: serves the library on a message bus until it is killed or loses its bus, and writes one byte to
// standard output when it serves. Or makes a round trip to the library, and fails when that does.
//
// usage: library_service ADDRESS [reach]
#include "messaging/bus_router.h"
#include "messaging/bus_transport.h"
#include "messaging/reply_threads.h"
#include "tests/messaging/library_object.h"

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace havrel {
namespace {

/// Keeps the reply of "keep", dies of "burn", answers with the number of its connections when it adds.
class Library
{
public:
    explicit Library(BusTransport& transport)
        : m_transport(transport)
    {
    }

    void handle(const XPCMessage& message)
    {
        if (message.keywordName == "burn")
            ::kill(::getpid(), SIGKILL);
        else if (message.keywordName == "sum:and:withReply:")
            message.reply({routes()});
        else if (message.keywordName == "echo:withReply:" && message.values[0] == QStringLiteral("keep"))
            m_kept.push_back(message.reply);
        else if (message.reply)
            message.reply(message.values);
    }

private:
    qint64 routes()
    {
        int error = 0;
        return static_cast<qint64>(m_transport.buses().router(platform::BusKind::Session, error)->routeCount());
    }

    BusTransport& m_transport;
    std::vector<XPCReply> m_kept;
};

const QString kService = QStringLiteral("com.havrel.library.1000");

int reach(const QByteArray& address)
{
    BusTransport transport({.session = address, .system = "unix:path=/none"});
    const XPCConnectionPtr connection = transport.connectionToService(kService, xpc_options::kNone);
    connection->setRemoteObjectInterface(tests::libraryInterface());
    connection->resume();
    tests::Awaited<bool> outcomes;
    connection->remoteObjectProxyWithErrorHandler([&](const Error&) { outcomes.tell(false); })
        ->send("barrierWithCompletion:", {}, [&](const QVariantList&) { outcomes.tell(true); });
    const bool succeeded = outcomes.one().value_or(false);
    connection->invalidate();
    ReplyThreads::shared().leave();
    return succeeded ? 0 : 1;
}

int serve(const QByteArray& address)
{
    BusTransport transport({.session = address, .system = "unix:path=/none"});
    const auto library = std::make_shared<Library>(transport);
    const auto object =
        std::make_shared<tests::LibraryObject>([library](const XPCMessage& message) { library->handle(message); });
    const auto listener = transport.listenerForService(kService, xpc_options::kNone);
    listener->setAcceptor([&](const XPCConnectionPtr& connection) {
        connection->setExportedInterface(tests::libraryInterface());
        connection->setExportedObject(object);
        return true;
    });
    std::signal(SIGPIPE, SIG_IGN); // who has it started by the bus does not read
    if (listener->resume() != 0 || (::write(1, "!", 1) != 1 && errno != EPIPE))
        return 1;
    for (;;)
        ::pause();
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    if (argc == 3)
        return havrel::reach(argv[1]);
    return argc == 2 ? havrel::serve(argv[1]) : 2;
}
