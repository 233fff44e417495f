// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/component_proxy.h"

#include <QByteArrayList>
#include <QList>
#include <QVariantMap>

#include <functional>

namespace havrel {

/// What this program says to the monitor (protocols::monitoring).
///
/// Threads: any thread.
class MonitorProxy : public ComponentProxy
{
public:
    /// Runs on the reply queue. Each description of an archive holds its path, bytes, under "path".
    using ArchivesReply = std::function<void(const QList<QVariantMap>& archives)>;

    using ComponentProxy::ComponentProxy;

    /// Makes it look again for archives that were captured to. \selector refreshRecentRepositoryCache
    void refreshRecentRepositoryCache() const;
    /// The archives that hold the items. \param items paths, as the bytes of the file system.
    /// \selector queryRepositoriesForItems:withReply:
    void queryRepositoriesForItems(const QByteArrayList& items, ArchivesReply reply) const;
    /// The archives that were captured to recently. \selector queryRecentlyCapturedRepositoriesWithReply:
    void queryRecentlyCapturedRepositories(ArchivesReply reply) const;
};

} // namespace havrel
