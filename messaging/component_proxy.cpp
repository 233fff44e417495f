// SPDX-License-Identifier: MIT
#include "messaging/component_proxy.h"

#include <utility>

namespace havrel {

void ComponentProxy::barrier(std::function<void()> completion) const
{
    send("barrierWithCompletion:", {}, [completion = std::move(completion)](const QVariantList& /*values*/) {
        completion();
    });
}

void ComponentProxy::send(const char* keywordName, const QVariantList& values, XPCReply reply) const
{
    if (m_proxy)
        m_proxy->send(QByteArray(keywordName), values, std::move(reply));
}

} // namespace havrel
