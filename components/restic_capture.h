// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"
#include "components/restic_program.h"

#include <QSet>

#include <functional>
#include <optional>

namespace havrel::restic {

/// One capture by the engine's program.
///
/// Threads: one thread at a time.
class Capture
{
public:
    /// \param parentOf the name of the capture of the same items that is to be compared with, where the engine cannot
    ///                  find it by their names; empty: none
    Capture(const Program& program,
            const EngineProgressBlock& progress,
            std::function<QString(const QByteArrayList& items)> parentOf);

    /// As CaptureEngine::capture().
    [[nodiscard]] CaptureSummary run(const QByteArrayList& items);

private:
    [[nodiscard]] QByteArrayList itemsThatAreThere(const QByteArrayList& items);
    [[nodiscard]] platform::Proceed takeOutput(const QByteArray& line);
    [[nodiscard]] platform::Proceed takeError(const QByteArray& line);
    [[nodiscard]] platform::Proceed tellProgress();
    [[nodiscard]] QByteArrayList argumentsFor(const QByteArrayList& present) const;
    void addProblem(const EngineProblem& problem);

    const Program& m_program;
    const EngineProgressBlock& m_progress;
    const std::function<QString(const QByteArrayList& items)> m_parentOf;
    EngineProgress m_latest;
    std::optional<CaptureSummary> m_summary;
    QList<EngineProblem> m_problems;
    QSet<QString> m_withProblem; // items
    bool m_stopped = false;
};

} // namespace havrel::restic
