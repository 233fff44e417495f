// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"
#include "components/restic_program.h"

#include <QSet>

#include <optional>

namespace havrel::restic {

/// One capture by the engine's program.
///
/// Threads: one thread at a time.
class Capture
{
public:
    Capture(const Program& program, const EngineProgressBlock& progress);

    /// As CaptureEngine::capture().
    [[nodiscard]] CaptureSummary run(const QByteArrayList& items);

private:
    [[nodiscard]] QByteArrayList itemsThatAreThere(const QByteArrayList& items);
    [[nodiscard]] platform::Proceed takeOutput(const QByteArray& line);
    [[nodiscard]] platform::Proceed takeError(const QByteArray& line);
    void addProblem(const EngineProblem& problem);

    const Program& m_program;
    const EngineProgressBlock& m_progress;
    std::optional<CaptureSummary> m_summary;
    QList<EngineProblem> m_problems;
    QSet<QString> m_withProblem; // items
    bool m_stopped = false;
};

} // namespace havrel::restic
