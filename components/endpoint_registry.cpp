// SPDX-License-Identifier: MIT
#include "components/endpoint_registry.h"

namespace havrel {

void EndpointRegistry::publish(const QString& identifier, const XPCEndpoint& endpoint, Client publisher)
{
    m_published[identifier] = {endpoint, publisher};
}

bool EndpointRegistry::redact(const QString& identifier, Client publisher)
{
    const auto found = m_published.find(identifier);
    if (found == m_published.cend() || found->second.publisher != publisher)
        return false;
    m_published.erase(found);
    return true;
}

QStringList EndpointRegistry::redactAll(Client publisher)
{
    QStringList identifiers;
    std::erase_if(m_published, [&](const auto& each) {
        if (each.second.publisher != publisher)
            return false;
        identifiers.append(each.first);
        return true;
    });
    return identifiers;
}

std::optional<XPCEndpoint> EndpointRegistry::find(const QString& identifier) const
{
    const auto found = m_published.find(identifier);
    return found == m_published.cend() ? std::nullopt : std::optional(found->second.endpoint);
}

} // namespace havrel
