// SPDX-License-Identifier: MIT
#include "messaging/monitor_proxy.h"

#include <utility>

namespace havrel {
namespace {

XPCReply archivesTo(MonitorProxy::ArchivesReply reply)
{
    return [reply = std::move(reply)](const QVariantList& values) {
        QList<QVariantMap> archives;
        for (const QVariant& each : values.value(0).toList())
            archives << each.toMap();
        reply(archives);
    };
}

} // namespace

void MonitorProxy::refreshRecentRepositoryCache() const
{
    send("refreshRecentRepositoryCache");
}

void MonitorProxy::queryRepositoriesForItems(const QByteArrayList& items, ArchivesReply reply) const
{
    send("queryRepositoriesForItems:withReply:",
         {QVariant(QVariantList(items.cbegin(), items.cend()))},
         archivesTo(std::move(reply)));
}

void MonitorProxy::queryRecentlyCapturedRepositories(ArchivesReply reply) const
{
    send("queryRecentlyCapturedRepositoriesWithReply:", {}, archivesTo(std::move(reply)));
}

} // namespace havrel
