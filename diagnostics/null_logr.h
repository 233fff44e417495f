// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/nslog_logr.h"

#include <atomic>

namespace havrel {

/// Writes nothing, but says so once: the first line that any logger of this class is asked for in a process makes the
/// console message "log output is being discarded".
///
/// Threads: any thread.
class NullLogr : public Logr
{
public:
    NullLogr();
    /// \param said set once the message was written; outlives the logger.
    NullLogr(ConsoleSink sink, std::atomic_flag& said);

    /// Answers a new child of \p inLine; null for the root. \selector -log:inLine:message:
    LogLineIdentPtr
    writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message) override;

private:
    ConsoleSink m_sink;
    std::atomic_flag& m_said;
};

} // namespace havrel
