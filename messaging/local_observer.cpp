// SPDX-License-Identifier: MIT
#include "messaging/local_observer.h"

#include <utility>

namespace havrel {

LocalObserver::LocalObserver(QString notificationName, std::optional<QString> source, Block block)
    : m_proxyBlock(std::move(block))
    , m_notificationName(std::move(notificationName))
    , m_sourceID(std::move(source))
{
}

void LocalObserver::forwardNotificationFromSource(const std::optional<QString>& source, const QVariantMap& info) const
{
    if (m_proxyBlock)
        m_proxyBlock(source, info);
}

} // namespace havrel
