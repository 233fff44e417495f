// SPDX-License-Identifier: MIT
#include "components/restic_engine.h"

#include "components/archive_file.h"
#include "components/engine_fault.h"
#include "components/item_names.h"
#include "components/restic_capture.h"
#include "components/restic_listing.h"
#include "components/restic_restore.h"

#include <algorithm>

namespace havrel {

ResticEngine::ResticEngine(const ArchiveFile& archive)
    : m_program(archive)
    , m_hasKeyCommand(!archive.key.command.isEmpty())
{
}

void ResticEngine::makeRepository()
{
    const restic::Outcome outcome = m_program.run({.arguments = {"init"}});
    if (outcome.status == 0)
        return;
    const bool isThere = faultOfEngine(outcome.status, outcome.words) == EngineFault::AlreadyThere;
    if (!isThere || !m_hasKeyCommand)
        m_program.raise(outcome);
    (void)storedCaptures(); // which raises, when the key is another one
}

CaptureSummary ResticEngine::capture(const QByteArrayList& items, const EngineProgressBlock& progress)
{
    return restic::Capture(m_program, progress).run(items);
}

QList<restic::StoredCapture> ResticEngine::storedCaptures() const
{
    const QByteArray json = m_program.outputOf({"snapshots", "--json"});
    std::optional<QList<restic::StoredCapture>> captures = restic::capturesOf(json);
    if (!captures)
        raiseFault(EngineFault::Other, {"unexpected list of captures: " + json.left(200)}, m_program.place());
    return std::move(*captures);
}

QList<CaptureRecord> ResticEngine::captures()
{
    QList<CaptureRecord> records;
    for (const restic::StoredCapture& each : storedCaptures())
        records.append(each.record);
    return records;
}

void ResticEngine::listItems(const QString& capture, const QByteArrayList& folders, const CapturedItemBlock& block)
{
    restic::listItems(m_program, {capture, folders}, block);
}

bool ResticEngine::holds(const CaptureRecord& capture, const QByteArray& item)
{
    const bool isItself = capture.items.contains(item);
    const bool isCovered = std::any_of(capture.items.begin(), capture.items.end(), [&item](const QByteArray& each) {
        return isAtOrBelow(item, each);
    });
    if (isItself || !isCovered)
        return isItself;
    bool found = false;
    listItems(capture.id, {item}, [&](const CapturedItem& each) { found = found || each.path == item; });
    return found;
}

std::optional<CaptureRecord> ResticEngine::newestHolding(const QByteArray& item)
{
    const QList<CaptureRecord> all = captures();
    const auto newest =
        std::find_if(all.rbegin(), all.rend(), [&](const CaptureRecord& each) { return holds(each, item); });
    return newest == all.rend() ? std::nullopt : std::optional(*newest);
}

QList<EngineProblem>
ResticEngine::restore(const CaptureRecord& capture, const QByteArrayList& items, const QByteArray& folder)
{
    const QList<restic::StoredCapture> all = storedCaptures();
    const auto stored = std::find_if(
        all.begin(), all.end(), [&](const restic::StoredCapture& each) { return each.record.id == capture.id; });
    if (stored == all.end())
        raiseFault(EngineFault::Other, {"there is no capture " + capture.id.toLatin1()}, m_program.place());
    return restic::Restore(m_program, *stored).run(items, folder);
}

std::unique_ptr<CaptureEngine> engineOf(const ArchiveFile& archive)
{
    if (archive.engine != kResticEngine)
        raiseFault(EngineFault::ProgramMissing,
                   {"this version knows no engine \"" + archive.engine.toUtf8() + '"'},
                   archive.repository);
    return std::make_unique<ResticEngine>(archive);
}

} // namespace havrel
