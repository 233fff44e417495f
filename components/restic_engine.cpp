// SPDX-License-Identifier: MIT
#include "components/restic_engine.h"

#include "components/archive_file.h"
#include "components/engine_fault.h"
#include "components/item_names.h"
#include "components/restic_capture.h"
#include "components/restic_listing.h"
#include "components/restic_restore.h"
#include "components/restic_texts.h"
#include "platform/host.h"

#include <QSet>

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
    return restic::Capture(m_program, progress, [this](const QByteArrayList& each) { return parentOf(each); })
        .run(items);
}

/// The engine finds the capture before by the text of its paths, so never where that has lost bytes: every file would
/// be read again. As it does, only captures of this host count.
QString ResticEngine::parentOf(const QByteArrayList& items) const
{
    if (std::all_of(items.begin(), items.end(), restic::survivesAsText))
        return {};
    const QSet<QByteArray> wanted(items.begin(), items.end());
    const QList<restic::StoredCapture> all = storedCaptures();
    const auto found = std::find_if(all.rbegin(), all.rend(), [&wanted](const restic::StoredCapture& each) {
        const QByteArrayList& held = each.record.items;
        return each.record.host.toUtf8() == platform::host().hostName() &&
               QSet<QByteArray>(held.begin(), held.end()) == wanted;
    });
    return found == all.rend() ? QString() : found->record.id;
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

/// Those of \p items that a capture holds. The engine is asked only about what lies within a captured item.
QByteArrayList ResticEngine::heldBy(const CaptureRecord& capture, const QByteArrayList& items)
{
    QByteArrayList held;
    QByteArrayList asked;
    for (const QByteArray& item : items) {
        const auto covers = [&item](const QByteArray& captured) { return isAtOrBelow(item, captured); };
        if (capture.items.contains(item))
            held.append(item);
        else if (std::any_of(capture.items.begin(), capture.items.end(), covers))
            asked.append(item);
    }
    if (!asked.isEmpty())
        listItems(capture.id, asked, [&](const CapturedItem& each) {
            if (asked.contains(each.path))
                held.append(each.path);
        });
    return held;
}

QHash<QByteArray, CaptureRecord> ResticEngine::newestHolding(const QByteArrayList& items)
{
    QHash<QByteArray, CaptureRecord> found;
    QByteArrayList sought = items;
    const QList<CaptureRecord> all = captures();
    for (auto capture = all.rbegin(); capture != all.rend() && !sought.isEmpty(); ++capture)
        for (const QByteArray& each : heldBy(*capture, sought)) {
            found.insert(each, *capture);
            sought.removeAll(each);
        }
    return found;
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
