// SPDX-License-Identifier: MIT
#pragma once

#include "components/component.h"
#include "messaging/protocol.h"
#include "tests/support/awaited.h"

namespace havrel::tests {

/// What \p component answers to a message; none when it does not.
inline std::optional<QVariantList>
answerOf(Component& component, const QByteArray& keywordName, const QVariantList& values = {})
{
    std::optional<QVariantList> answer;
    component.received({keywordName, values, [&](const QVariantList& each) { answer = each; }});
    return answer;
}

/// The messages of \p protocol, and of those that it adopts, that \p component does nothing with.
inline QByteArrayList unhandled(const Component& component, const Protocol& protocol)
{
    QByteArrayList names;
    for (const Protocol* each : protocol.adopted())
        names += unhandled(component, *each);
    for (const ProtocolMessage& each : protocol.messages())
        if (!component.handles(each.keywordName))
            names.append(each.keywordName);
    return names;
}

} // namespace havrel::tests
