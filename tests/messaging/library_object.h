// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/protocol.h"
#include "messaging/xpc_connection.h"
#include "tests/support/awaited.h"

#include <functional>

namespace havrel::tests {

/// What the tests' ends say to each other.
inline const Protocol& libraryProtocol()
{
    static const Protocol s_protocol("TestLibrary",
                                     {},
                                     {
                                         {"borrow:withReply:", {"s"}, QByteArrayList{"s"}},
                                         {"sum:and:withReply:", {"i", "u"}, QByteArrayList{"x"}},
                                         {"catalogueWithReply:", {}, QByteArrayList{"aa{sv}"}},
                                         {"echo:withReply:", {"v"}, QByteArrayList{"v"}},
                                         {"shelf:withReply:", {"s"}, QByteArrayList{"a(so)"}},
                                         {"barrierWithCompletion:", {}, QByteArrayList{}},
                                         {"note:", {"i"}},
                                         {"notePath:", {"ay"}},
                                         {"burn"},
                                     });
    return s_protocol;
}

/// A library that does not know all of it.
inline const Protocol& smallLibraryProtocol()
{
    static const Protocol s_protocol("TestLibrary",
                                     {},
                                     {
                                         {"note:", {"i"}},
                                         {"sum:and:withReply:", {"s", "s"}, QByteArrayList{"x"}},
                                         {"barrierWithCompletion:", {}, QByteArrayList{}},
                                     });
    return s_protocol;
}

/// A shelf is an object of its own, which knows no more than a small library.
inline XPCInterfacePtr libraryInterface()
{
    const auto interface = std::make_shared<XPCInterface>(libraryProtocol());
    interface->setInterface(std::make_shared<XPCInterface>(smallLibraryProtocol()), {"shelf:withReply:", 0});
    return interface;
}

/// Calls a block with each message, and remembers it.
class LibraryObject final : public XPCExportedObject
{
public:
    using Block = std::function<void(const XPCMessage& message)>;

    explicit LibraryObject(Block block = {})
        : m_block(std::move(block))
    {
    }

    void received(const XPCMessage& message) override
    {
        noted.tell({message.keywordName, message.values}); // a kept reply block would never be dropped
        if (m_block)
            m_block(message);
        else if (message.keywordName == "barrierWithCompletion:")
            message.reply({});
        else if (message.reply)
            message.reply(message.values);
    }

    Awaited<XPCMessage> noted;

private:
    const Block m_block;
};

} // namespace havrel::tests
