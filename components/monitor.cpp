// SPDX-License-Identifier: MIT
#include "components/monitor.h"

#include "components/item_names.h"
#include "foundation/reference_date.h"
#include "platform/items.h"

#include <algorithm>
#include <utility>

namespace havrel {
namespace {

using namespace Qt::StringLiterals;

QVariantMap described(const KnownArchive& archive)
{
    QVariantMap description{{u"path"_s, archive.path}, {u"identifier"_s, archive.identifier}};
    if (archive.lastCapture.isValid())
        description.insert(u"lastCaptureTime"_s, intervalSinceReferenceDate(archive.lastCapture));
    return description;
}

bool isThere(const KnownArchive& archive)
{
    return platform::findName(archive.path) == 0;
}

QString keyOfNotification(const QVariant& type)
{
    return QStringLiteral("UserNotification.%1").arg(type.toInt());
}

} // namespace

Monitor::Monitor(const QByteArray& folder, ArchiveRegistry archives)
    : PreferencingComponent(folder + "/monitor-preferences.plist")
    , m_archives(std::move(archives))
{
    handleArchives();
    handleWindows();
    handleNotifications();
    refresh();
}

void Monitor::handleArchives()
{
    on("refreshRecentRepositoryCache", [this](const XPCMessage&) { refresh(); });
    on("queryRecentlyCapturedRepositoriesWithReply:", [this](const XPCMessage& each) {
        const MutexLock guard(m_lock);
        each.reply({QVariant(m_recent)});
    });
    on("queryRepositoriesForItems:withReply:",
       [this](const XPCMessage& each) { each.reply({QVariant(holding(each.values[0].toList()))}); });
}

void Monitor::handleWindows()
{
    for (const char* each : {"orderMonitorWindowFront", "orderMonitorWindowFrontIfVisible", "orderStatusWindowFront"})
        answerAlways(each, {});
    answerAlways("queryStatusWindowHasStatus:", {false});
    answerAlways("queryCanMonitorCommandName:withReply:", {false});
}

void Monitor::handleNotifications()
{
    on("setUserNotificationForType:enabled:",
       [this](const XPCMessage& each) { setPreference(keyOfNotification(each.values[0]), each.values[1].toBool()); });
    on("queryEnabledUserNotificationForType:withReply:",
       [this](const XPCMessage& each) { each.reply({preference(keyOfNotification(each.values[0])).toBool()}); });
}

void Monitor::refresh()
{
    QVariantList recent;
    for (const KnownArchive& each : m_archives.archives())
        if (each.lastCapture.isValid() && isThere(each))
            recent.append(described(each));
    const MutexLock guard(m_lock);
    m_recent = recent;
}

/// Those that hold all of them.
QVariantList Monitor::holding(const QVariantList& items) const
{
    QByteArrayList paths;
    for (const QVariant& each : items)
        paths.append(plainPath(each.toByteArray(), "/"));
    QVariantList found;
    for (const KnownArchive& each : m_archives.archives()) {
        const auto isHeld = [&each](const QByteArray& path) { return each.holds(path); };
        if (!paths.isEmpty() && std::all_of(paths.cbegin(), paths.cend(), isHeld) && isThere(each))
            found.append(described(each));
    }
    return found;
}

} // namespace havrel
