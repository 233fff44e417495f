// SPDX-License-Identifier: MIT
#include "components/scheduler_notices.h"

#include "messaging/switchboard_connection.h"

namespace havrel {
namespace {

/// Until the switchboard has handled it: another one than before, if that has just died.
void postNow(QLatin1StringView notice, const QVariantMap& info)
{
    const auto post = [&](const XPCProxyPtr& switchboard) {
        switchboard->send("postNotificationName:source:userInfo:",
                          {QString(notice), QStringList{scheduler_notices::kSource}, info});
    };
    const std::shared_ptr<HVSwitchboardConnection> connection = HVConnection::switchboardConnection();
    if (connection->performSynchronousBlock(post))
        return;
    connection->disconnect();
    (void)connection->performSynchronousBlock(post);
}

} // namespace

void SchedulerNotices::post(QLatin1StringView notice, const QVariantMap& info)
{
    const bool isProgress = notice == scheduler_notices::kProgressed;
    if (isProgress && m_isBehind.exchange(true))
        return;
    m_queue.async([this, isProgress, notice, info] {
        postNow(notice, info);
        if (isProgress)
            m_isBehind = false;
    });
}

} // namespace havrel
