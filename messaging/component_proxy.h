// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_proxy.h"

#include <functional>

namespace havrel {

/// What may be said to every component. A message to nobody (a null proxy) is not sent, and its reply does not come.
///
/// Threads: any thread.
class ComponentProxy
{
public:
    /// \param proxy null: nobody
    explicit ComponentProxy(XPCProxyPtr proxy)
        : m_proxy(std::move(proxy))
    {
    }

    /// Whether there is somebody to talk to.
    explicit operator bool() const noexcept { return m_proxy != nullptr; }
    [[nodiscard]] const XPCProxyPtr& proxy() const noexcept { return m_proxy; }

    /// \p completion runs on the reply queue when everything that was sent before has been handled.
    /// \selector barrierWithCompletion:
    void barrier(std::function<void()> completion) const;

protected:
    void send(const char* keywordName, const QVariantList& values = {}, XPCReply reply = {}) const;

private:
    XPCProxyPtr m_proxy;
};

} // namespace havrel
