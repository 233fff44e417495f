// SPDX-License-Identifier: MIT
#pragma once

#include "integrations/file_manager.h"
#include "integrations/places.h"
#include "platform/programs.h"

#include <QString>

#include <functional>

namespace havrel::integrations {

/// What there is of the entries of one way.
enum class Presence {
    None,
    Other, ///< some are missing, or they are not those of this version
    Complete,
};

/// How far one way is in place.
struct WayState
{
    const Way* way = nullptr;
    Presence ofUser = Presence::None;
    Presence ofEverybody = Presence::None;
    bool isLoaderMissing = false;
    bool needsRestart = false; ///< the file manager runs since before the entry was there
    QString fault;             ///< null, or why nothing can be told or changed

    [[nodiscard]] bool isThere() const { return ofUser != Presence::None || ofEverybody != Presence::None; }
};

/// What came of adding or removing.
struct Change
{
    QByteArrayList changed; ///< the files that were written or removed
    QByteArrayList kept;    ///< the files that were not removed, because \ref Integration::add did not write them
    QByteArray at;          ///< the file that the fault is about
    QString fault;          ///< null when all went well
};

/// The entries of one file manager on this computer.
///
/// Threads: one thread at a time.
class Integration
{
public:
    using Beginning = std::function<std::optional<platform::SystemTime>(const QByteArray& program)>;

    /// \param beginning tells since when a program runs
    Integration(const FileManager& manager, Places places, Beginning beginning = platform::beginningOfProgram);

    [[nodiscard]] const FileManager& manager() const { return m_manager; }
    [[nodiscard]] bool isInstalled() const;
    [[nodiscard]] bool isRunning() const;
    /// Every way, the best first. Blocks on the disk.
    [[nodiscard]] QList<WayState> states() const;
    /// The way that shows the commands now; else the one that could be added as things are; else the one that is there
    /// but lacks its loader; else the best.
    [[nodiscard]] WayState state() const;

    /// Brings the commands to the user's own menus by the best way for which everything is there; what is there already
    /// for everybody is not doubled. Blocks on the disk.
    [[nodiscard]] Change add() const;
    /// Takes away what \ref add brought, by whatever way; what an installation put into the user's own folders stays.
    /// Blocks on the disk.
    [[nodiscard]] Change remove() const;

private:
    [[nodiscard]] WayState stateOf(const Way& way) const;
    [[nodiscard]] Presence presenceForEverybody(const Way& way) const;
    [[nodiscard]] bool isOlderThan(const QByteArrayList& files) const;

    const FileManager& m_manager;
    Places m_places;
    Beginning m_beginning;
};

} // namespace havrel::integrations
