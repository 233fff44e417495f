// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace havrel::cli {

class Report;

/// Has the user's scheduler capture \p items into the archive at \p archive, all of them absolute and plain, and waits
/// until that is done, with a bar; also when scheduler or switchboard end meanwhile and are started again. What went
/// wrong is told to \p report. Makes the application object that the waiting needs, so there must be none.
///
/// Threads: the main thread only.
void captureByScheduler(const QByteArray& archive, const QByteArrayList& items, Report& report);

} // namespace havrel::cli
