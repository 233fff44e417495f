// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_schedule.h"
#include "components/preferencing_component.h"

namespace havrel {

/// Makes the captures that programs ask for, through the engines of archives (protocols::scheduling). What it tells is
/// described at CaptureSchedule. An action is known by its "id", or by the dictionary that holds that.
///
/// It launches no metadata services, because there are none here.
///
/// Threads: as its base.
class Scheduler final : public PreferencingComponent
{
public:
    /// \param folder where it keeps its schedule and its preferences
    Scheduler(const QByteArray& folder, CaptureSchedule::Runner runner);

    [[nodiscard]] CaptureSchedule& schedule() noexcept { return m_schedule; }

private:
    void handleQueries();
    void handleChanges();
    void capture(const QVariantList& values);

    CaptureSchedule m_schedule;
};

/// Captures \p items by the engine of the archive at \p archive, and notes that for ArchiveRegistry. Blocks.
/// \throws HVException "Archive".
///
/// Threads: any thread.
[[nodiscard]] CaptureSummary
captureToArchive(const QByteArray& archive, const QByteArrayList& items, const EngineProgressBlock& progress);

} // namespace havrel
