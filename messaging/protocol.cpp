// SPDX-License-Identifier: MIT
#include "messaging/protocol.h"

#include <algorithm>

namespace havrel {

Protocol::Protocol(QByteArray name, std::vector<const Protocol*> adopted, std::vector<ProtocolMessage> messages)
    : m_name(std::move(name))
    , m_adopted(std::move(adopted))
    , m_messages(std::move(messages))
{
    for (ProtocolMessage& each : m_messages)
        each.signature = each.takes.join();
}

const Protocol* Protocol::declarerOf(const QByteArray& keywordName) const
{
    const auto isNamed = [&](const ProtocolMessage& each) { return each.keywordName == keywordName; };
    if (std::any_of(m_messages.cbegin(), m_messages.cend(), isNamed))
        return this;
    for (const Protocol* each : m_adopted)
        if (const Protocol* declarer = each->declarerOf(keywordName))
            return declarer;
    return nullptr;
}

const ProtocolMessage* Protocol::messageNamed(const QByteArray& keywordName) const
{
    const Protocol* declarer = declarerOf(keywordName);
    if (!declarer)
        return nullptr;
    const auto isNamed = [&](const ProtocolMessage& each) { return each.keywordName == keywordName; };
    return &*std::find_if(declarer->m_messages.cbegin(), declarer->m_messages.cend(), isNamed);
}

} // namespace havrel
