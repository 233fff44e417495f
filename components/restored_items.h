// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"

#include <QHash>

namespace havrel {

/// Items that an engine has brought back into a folder of their own, each at its whole path below that, before they go
/// where they belong. Nobody else can reach them there.
///
/// Threads: one thread at a time.
class RestoredItems
{
public:
    /// Makes the folder \p into where it is missing, and a new one in it. \throws HVException "Archive".
    explicit RestoredItems(const QByteArray& into);
    /// Removes what has not gone where it belongs.
    ~RestoredItems();
    RestoredItems(const RestoredItems&) = delete;
    RestoredItems& operator=(const RestoredItems&) = delete;
    RestoredItems(RestoredItems&&) = delete;
    RestoredItems& operator=(RestoredItems&&) = delete;

    /// The folder for the engine.
    [[nodiscard]] const QByteArray& folder() const noexcept { return m_folder; }
    /// Where the item at the absolute \p path has been brought back.
    [[nodiscard]] QByteArray placeOf(const QByteArray& path) const { return m_folder + path; }
    /// Where it belongs: its name in the folder that was given.
    [[nodiscard]] QByteArray destinationOf(const QByteArray& path) const;

    /// Makes holes of zeros at and below the item, and answers what its user may not write to (and so may lack
    /// attributes that it should have): absolute paths, as they were captured.
    [[nodiscard]] QByteArrayList digHolesAndFindReadOnly(const QByteArray& path) const;
    /// Gives links at or below the item, which the engine has brought back otherwise, their targets.
    void retargetLinks(const QByteArray& path, const QHash<QByteArray, QByteArray>& targets) const;
    /// Moves the item where it belongs. \return 0 or an errno value: EEXIST when that name is taken, ENOENT when the
    ///         item has not been brought back.
    [[nodiscard]] int place(const QByteArray& path) const;

private:
    void openUpFoldersAbove(const QByteArray& path) const;

    QByteArray m_into;
    QByteArray m_folder;
};

} // namespace havrel
