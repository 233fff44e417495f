// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_schedule.h"
#include "components/preferencing_component.h"

#include <memory>

namespace havrel {

/// Makes the captures that programs ask for, through the engines of archives (protocols::scheduling). What it tells is
/// described at CaptureSchedule. An action is known by its "id", or by the dictionary that holds that.
///
/// A request has no answer. Who wants to know which action has come of it asks for the volatile information, by the
/// same connection, which then also has "asked" (string): the id of the action that this connection has asked for last,
/// empty when there is none or the request was refused. What becomes of the action is told by notifications
/// (scheduler_notices.h).
///
/// It launches no metadata services, because there are none here.
///
/// Threads: as its base.
class Scheduler final : public PreferencingComponent
{
public:
    /// \param folder where it keeps its schedule and its preferences
    /// \param listener is told what happens to actions; empty: nobody
    Scheduler(const QByteArray& folder, CaptureSchedule::Runner runner, CaptureSchedule::Listener listener = {});

    [[nodiscard]] CaptureSchedule& schedule() noexcept { return m_schedule; }

    /// What \p values, those of a quick capture, ask for. \return the id of the action; empty when it is refused
    QString capture(const QVariantList& values);

private:
    void handleQueries();
    void handleChanges();

    CaptureSchedule m_schedule;
};

/// What the scheduler shows to one connection, whose requests it knows.
///
/// Threads: one thread at a time.
class SchedulerClient final : public XPCExportedObject
{
public:
    explicit SchedulerClient(std::shared_ptr<Scheduler> scheduler);

    void received(const XPCMessage& message) override;

private:
    const std::shared_ptr<Scheduler> m_scheduler;
    QString m_asked = QStringLiteral(""); // id
};

/// Captures \p items by the engine of the archive at \p archive, and notes that for ArchiveRegistry, as far as it can:
/// what is captured is captured without a note, too, which is logged. Blocks. \throws HVException "Archive".
///
/// Threads: any thread.
[[nodiscard]] CaptureSummary
captureToArchive(const QByteArray& archive, const QByteArrayList& items, const EngineProgressBlock& progress);

} // namespace havrel
