// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/logr.h"

#include <QStringList>

#include <sys/types.h>

namespace havrel {

/// What the start line of a process tells.
struct ProcessFacts
{
    QString processName;
    QString operatingSystem;
    QString architecture;
    pid_t parent = 0;
    uid_t user = 0;
    uid_t effectiveUser = 0;
    double uptime = 0; ///< of the system, seconds
    QStringList arguments;

    /// Those of the running process.
    [[nodiscard]] static ProcessFacts current();
};

/// Writes "started NAME" and the facts under it, at Debug; answers the start line.
///
/// Threads: any thread.
LogLineIdentPtr writeStartProcess(Logr& logger, const QString& name, const ProcessFacts& facts);

/// Writes "stopping NAME", or "stopping NAME, exiting with status N" unless N is 0, at Debug.
///
/// Threads: any thread.
LogLineIdentPtr writeStopProcess(Logr& logger, const QString& name, int exitStatus);

} // namespace havrel
