// SPDX-License-Identifier: MIT
#pragma once

#include "components/archive_registry.h"
#include "components/preferencing_component.h"

namespace havrel {

/// Knows the user's archives (protocols::monitoring), of which it tells only those whose file is there. A description
/// of an archive has "path" (bytes), "identifier" (string), and once something was captured "lastCaptureTime" (double:
/// seconds since 2001-01-01 00:00:00 UTC).
///
/// It has no windows and shows no notifications: orders to windows do nothing, no command can be monitored, there never
/// is a status, and no type of notification is enabled unless somebody has enabled it, which it remembers.
///
/// Threads: as its base.
class Monitor final : public PreferencingComponent
{
public:
    /// \param folder where it keeps its preferences
    Monitor(const QByteArray& folder, ArchiveRegistry archives);

private:
    void handleArchives();
    void handleWindows();
    void handleNotifications();
    /// Looks again for what was captured to.
    void refresh() HAVREL_EXCLUDES(m_lock);
    [[nodiscard]] QVariantList holding(const QVariantList& items) const;

    const ArchiveRegistry m_archives;
    Mutex m_lock;
    QVariantList m_recent HAVREL_GUARDED_BY(m_lock);
};

} // namespace havrel
