// SPDX-License-Identifier: MIT
#include "components/scheduler.h"

#include "components/archive_file.h"
#include "components/archive_registry.h"
#include "components/item_names.h"
#include "diagnostics/logr.h"
#include "foundation/clock.h"

#include <utility>

namespace havrel {
namespace {

constexpr const char* kQuickCapture = "quickCapture:toRepository:";
constexpr const char* kVolatileInfo = "queryVolatileInfoWithReply:";

QString actionIdentifier(const QVariant& action)
{
    const QVariantMap dictionary = action.toMap();
    return dictionary.isEmpty() ? action.toString() : dictionary.value(QStringLiteral("id")).toString();
}

} // namespace

Scheduler::Scheduler(const QByteArray& folder, CaptureSchedule::Runner runner, CaptureSchedule::Listener listener)
    : PreferencingComponent(folder + "/scheduler-preferences.plist")
    , m_schedule(folder + "/schedule.plist", std::move(runner), std::move(listener))
{
    handleQueries();
    handleChanges();
    answerAlways("launchMetadataService:forCommand:withReply:", {QVariant(QVariantList())});
}

void Scheduler::handleQueries()
{
    on(kVolatileInfo, [this](const XPCMessage& each) { each.reply({m_schedule.volatileInfo()}); });
    on("queryRunSummariesWithReply:", [this](const XPCMessage& each) { each.reply({m_schedule.runSummaries()}); });
    on("queryNextScheduledActionInfoWithReply:",
       [this](const XPCMessage& each) { each.reply({QVariant(m_schedule.nextAction())}); });
    on("queryActionsInfoWithReply:", [this](const XPCMessage& each) { each.reply({QVariant(m_schedule.actions())}); });
    on("queryHoldTimeWithReply:", [this](const XPCMessage& each) { each.reply({m_schedule.holdTime()}); });
}

void Scheduler::handleChanges()
{
    on("setHoldTime:", [this](const XPCMessage& each) { m_schedule.setHoldTime(each.values[0].toDouble()); });
    on("sabotageScheduleTime:",
       [this](const XPCMessage& each) { m_schedule.setClockAhead(each.values[0].toDouble()); });
    on("setAction:toExecuteAt:", [this](const XPCMessage& each) {
        m_schedule.setTime(actionIdentifier(each.values[0]), each.values[1].toDouble());
    });
    on("setAction:suspended:", [this](const XPCMessage& each) {
        m_schedule.setSuspended(actionIdentifier(each.values[0]), each.values[1].toBool());
    });
    on(kQuickCapture, [this](const XPCMessage& each) { (void)capture(each.values); });
}

/// Paths are absolute: the working folder of whoever asks is not known.
QString Scheduler::capture(const QVariantList& values)
{
    const QByteArray archive = values[1].toByteArray();
    QByteArrayList items;
    for (const QVariant& each : values[0].toList())
        if (const QByteArray path = each.toByteArray(); path.startsWith('/') && !path.contains('\0'))
            items.append(plainPath(path, "/"));
    if (items.size() == values[0].toList().size() && !items.isEmpty() && archive.startsWith('/'))
        return m_schedule.add(archive, items);
    Logr::log(LogClassification::Warning, QStringLiteral("a capture without items, or of paths that are none"));
    return QStringLiteral("");
}

SchedulerClient::SchedulerClient(std::shared_ptr<Scheduler> scheduler)
    : m_scheduler(std::move(scheduler))
{
}

void SchedulerClient::received(const XPCMessage& message)
{
    if (message.keywordName == kQuickCapture) {
        m_asked = m_scheduler->capture(message.values);
    } else if (message.keywordName == kVolatileInfo) {
        QVariantMap info = m_scheduler->schedule().volatileInfo();
        info.insert(QStringLiteral("asked"), m_asked);
        message.reply({info});
    } else {
        m_scheduler->received(message);
    }
}

CaptureSummary
captureToArchive(const QByteArray& archive, const QByteArrayList& items, const EngineProgressBlock& progress)
{
    const ArchiveFile file = ArchiveFile::readFrom(archive);
    const CaptureSummary summary = engineOf(file)->capture(items, progress);
    try {
        ArchiveRegistry().noteCapture(file, archive, items, now());
    } catch (const HVException& exception) {
        Logr::logException(LogClassification::Warning, exception);
    }
    return summary;
}

} // namespace havrel
