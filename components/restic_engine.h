// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"
#include "components/restic_messages.h"
#include "components/restic_program.h"

namespace havrel {

/// The name of the engine in archive files.
inline constexpr QLatin1StringView kResticEngine{"restic"};

/// The engine whose repositories restic keeps: deduplicated and encrypted, in a local folder or at any place that it
/// knows (SFTP, S3 ...). It is called as a program for each operation, which takes a quarter of a second at least,
/// because a key is deliberately slow to check.
///
/// What that program would lose, this class keeps: paths of items and targets of links that are not UTF-8 (in tags of
/// the capture), holes (dug again), and attributes of what is read-only (set again; version 0.14 loses them silently
/// unless root restores).
///
/// Threads: any thread.
class ResticEngine : public CaptureEngine
{
public:
    explicit ResticEngine(const ArchiveFile& archive);

    void makeRepository() override;
    CaptureSummary capture(const QByteArrayList& items, const EngineProgressBlock& progress) override;
    [[nodiscard]] QList<CaptureRecord> captures() override;
    void listItems(const QString& capture, const QByteArrayList& folders, const CapturedItemBlock& block) override;
    [[nodiscard]] QHash<QByteArray, CaptureRecord> newestHolding(const QByteArrayList& items) override;
    [[nodiscard]] QList<EngineProblem>
    restore(const CaptureRecord& capture, const QByteArrayList& items, const QByteArray& folder) override;

private:
    [[nodiscard]] QList<restic::StoredCapture> storedCaptures() const;
    [[nodiscard]] QString parentOf(const QByteArrayList& items) const;
    [[nodiscard]] QByteArrayList heldBy(const CaptureRecord& capture, const QByteArrayList& items);

    restic::Program m_program;
    bool m_hasKeyCommand;
};

} // namespace havrel
