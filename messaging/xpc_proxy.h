// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QVariantList>

#include <functional>
#include <memory>

namespace havrel {

/// What the reply block of a message gets: as many values as the protocol says, of its types; an XPCProxyPtr where the
/// interface says that one is a remote object (XPCInterface::interfaceFor).
using XPCReply = std::function<void(const QVariantList& values)>;

/// The object at the other end of a connection. Messages arrive in the order in which they are sent, answers come back
/// in the order in which they are given.
///
/// Threads: any thread.
class XPCProxy
{
public:
    XPCProxy() = default;
    virtual ~XPCProxy();
    XPCProxy(const XPCProxy&) = delete;
    XPCProxy& operator=(const XPCProxy&) = delete;
    XPCProxy(XPCProxy&&) = delete;
    XPCProxy& operator=(XPCProxy&&) = delete;

    /// Sends a message and returns; waits only where too many messages are under way. Either \p reply runs or the
    /// error handler that the proxy was made with, each on the connection's reply queue, never inside of this call.
    /// A message that the interface does not have, or with values that do not fit it, raises an exception "Bug".
    ///
    /// \param keywordName "barrierWithCompletion:"
    /// \param reply left out for messages without a reply block
    virtual void send(const QByteArray& keywordName, const QVariantList& values = {}, XPCReply reply = {}) = 0;
};

using XPCProxyPtr = std::shared_ptr<XPCProxy>;

} // namespace havrel
