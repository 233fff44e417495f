// SPDX-License-Identifier: MIT
#include "integrations/integration.h"

#include "foundation/error.h"
#include "integrations/thunar_actions_file.h"
#include "platform/file_contents.h"
#include "platform/item_removal.h"
#include "platform/items.h"
#include "platform/replaced_file.h"

#include <algorithm>
#include <cerrno>

namespace havrel::integrations {
namespace {

/// Ends each file that \ref Integration::add writes. What does not have it was not put there by that.
constexpr char kMark[] = "# Written by 'havrel integrations add'; 'havrel integrations remove' takes it away.\n";

bool isMarked(const QByteArray& contents)
{
    return contents.contains(kMark);
}

/// Whether that is the file of this version, be it an installation's or a marked one.
bool isOfThisVersion(const platform::FileContents& file, const EntryFile& entry)
{
    return file.error == 0 && (file.bytes == entry.contents || file.bytes == entry.contents + kMark);
}

QByteArrayList pathsBelow(const QByteArray& folder, const QList<EntryFile>& files)
{
    QByteArrayList paths;
    for (const EntryFile& each : files)
        paths.append(folder + '/' + each.path);
    return paths;
}

Presence presenceOf(qsizetype count, qsizetype right, qsizetype all)
{
    if (count == 0)
        return Presence::None;
    return right == all ? Presence::Complete : Presence::Other;
}

/// The user's copies, which are to be those of this version.
Presence presenceIn(const QByteArray& folder, const QList<EntryFile>& files)
{
    qsizetype count = 0;
    qsizetype right = 0;
    for (const EntryFile& each : files) {
        const platform::FileContents file = platform::readFile(folder + '/' + each.path);
        count += file.error != ENOENT ? 1 : 0;
        right += isOfThisVersion(file, each) ? 1 : 0;
    }
    return presenceOf(count, right, files.size());
}

int writeEntry(const QByteArray& path, const QByteArray& contents, mode_t mode)
{
    if (const int error = platform::makeFolders(path.left(path.lastIndexOf('/')), 0700))
        return error;
    return platform::replaceFile(path, contents, mode);
}

void writeEntries(const Way& way, const QByteArray& folder, Change& change)
{
    for (const EntryFile& each : way.files()) {
        const QByteArray path = folder + '/' + each.path;
        if (isOfThisVersion(platform::readFile(path), each))
            continue;
        if (const int error = writeEntry(path, each.contents + kMark, way.mustBeExecutable ? 0755 : 0644)) {
            change.at = path;
            change.fault = systemErrorText(error);
            return;
        }
        change.changed.append(path);
    }
}

void removeEntry(const QByteArray& path, Change& change)
{
    const platform::FileContents file = platform::readFile(path);
    if (file.error == 0 && !isMarked(file.bytes)) {
        change.kept.append(path);
        return;
    }
    const int error = file.error == 0 ? platform::removeItem(path) : file.error;
    if (error == 0) {
        change.changed.append(path);
    } else if (error != ENOENT && error != ENOTDIR) {
        change.at = path;
        change.fault = systemErrorText(error);
    }
}

void removeEntries(const Way& way, const QByteArray& folder, Change& change)
{
    for (const QByteArray& path : pathsBelow(folder, way.files()))
        removeEntry(path, change);
}

/// How close that is to commands in the menu; the greatest is shown.
int rankOf(const WayState& state)
{
    if (!state.isLoaderMissing)
        return state.isThere() ? 3 : 2;
    return state.isThere() ? 1 : 0;
}

/// How good it would be to add to it; the greatest is used.
int rankToAdd(const WayState& state)
{
    if (state.isLoaderMissing)
        return 0;
    return state.isThere() ? 2 : 1;
}

/// The first of those for which \p rank answers the most.
const WayState& bestOf(const QList<WayState>& states, int (*rank)(const WayState&))
{
    return *std::max_element(states.begin(), states.end(), [rank](const WayState& one, const WayState& other) {
        return rank(one) < rank(other);
    });
}

} // namespace

Integration::Integration(const FileManager& manager, Places places, Beginning beginning)
    : m_manager(manager)
    , m_places(std::move(places))
    , m_beginning(std::move(beginning))
{
}

bool Integration::isInstalled() const
{
    return m_places.hasProgram(m_manager.program);
}

bool Integration::isRunning() const
{
    return m_beginning(m_manager.program).has_value();
}

Presence Integration::presenceForEverybody(const Way& way) const
{
    const QByteArrayList folders =
        way.seen == Seen::InCompiledInFolder ? QByteArrayList{m_places.compiledInFolder} : m_places.dataFolders;
    Presence found = Presence::None;
    for (const QByteArray& folder : folders) {
        const QByteArrayList paths = pathsBelow(folder, way.files());
        const auto count = std::count_if(paths.begin(), paths.end(), platform::itemExists);
        found = std::max(found, presenceOf(count, count, paths.size()));
    }
    return found;
}

bool Integration::isOlderThan(const QByteArrayList& files) const
{
    const auto beginning = m_beginning(m_manager.program);
    return beginning && std::any_of(files.begin(), files.end(), [&beginning](const QByteArray& path) {
               const auto change = platform::changeOfItem(path);
               return change && *change > *beginning;
           });
}

WayState Integration::stateOf(const Way& way) const
{
    WayState state{.way = &way, .fault = {}};
    for (const char* needed : {way.module, way.description})
        state.isLoaderMissing = state.isLoaderMissing || (needed != nullptr && !m_places.hasModule(needed));
    QByteArrayList files;
    if (way.isSharedFile()) {
        const ThunarActionsFile file(m_places);
        file.describe(state);
        files.append(file.path());
    } else {
        state.ofUser = presenceIn(m_places.dataHome, way.files());
        state.ofEverybody = presenceForEverybody(way);
        for (const QByteArray& folder : QByteArrayList{m_places.dataHome} + m_places.dataFolders)
            files += pathsBelow(folder, way.files());
    }
    state.needsRestart = state.isThere() && way.noticed == Noticed::AtStart && isOlderThan(files);
    return state;
}

QList<WayState> Integration::states() const
{
    QList<WayState> states;
    for (const Way& each : m_manager.ways)
        states.append(stateOf(each));
    return states;
}

WayState Integration::state() const
{
    return bestOf(states(), rankOf);
}

Change Integration::add() const
{
    Change change;
    const WayState best = bestOf(states(), rankToAdd);
    if (best.ofEverybody == Presence::Complete)
        return change;
    if (best.way->isSharedFile())
        ThunarActionsFile(m_places).add(change);
    else
        writeEntries(*best.way, m_places.dataHome, change);
    return change;
}

Change Integration::remove() const
{
    Change change;
    for (const Way& each : m_manager.ways) {
        if (each.isSharedFile())
            ThunarActionsFile(m_places).remove(change);
        else
            removeEntries(each, m_places.dataHome, change);
    }
    return change;
}

} // namespace havrel::integrations
