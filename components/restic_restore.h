// SPDX-License-Identifier: MIT
#pragma once

#include "components/restic_messages.h"
#include "components/restic_program.h"
#include "components/restored_items.h"

namespace havrel::restic {

/// One restore by the engine's program.
///
/// Threads: one thread at a time.
class Restore
{
public:
    Restore(const Program& program, const StoredCapture& capture);

    /// As CaptureEngine::restore().
    [[nodiscard]] QList<EngineProblem> run(const QByteArrayList& items, const QByteArray& folder);

private:
    [[nodiscard]] QByteArrayList itemsWithRoom(const QByteArrayList& items, const RestoredItems& restored);
    void tellOfLostAttributes(const QByteArray& folder, const RestoredItems& restored);
    void bringBack(const QByteArrayList& items, const RestoredItems& restored);
    void takeFailure(const QByteArray& line, const RestoredItems& restored);
    void mend(const QByteArray& item, const RestoredItems& restored);
    void giveAttributes(const QByteArrayList& readOnly, const RestoredItems& restored);
    void place(const QByteArray& item, const RestoredItems& restored);
    void addProblem(const QByteArray& item, const QString& reason);

    const Program& m_program;
    const StoredCapture& m_capture;
    QByteArrayList m_failed; // paths that the engine could not bring back
    QList<EngineProblem> m_problems;
};

} // namespace havrel::restic
