// SPDX-License-Identifier: MIT
#include "components/restored_items.h"

#include "components/archive_file.h"
#include "components/item_names.h"
#include "diagnostics/exception.h"
#include "foundation/error.h"
#include "platform/directory_walk.h"
#include "platform/file_names.h"
#include "platform/holes.h"
#include "platform/item_removal.h"
#include "platform/items.h"
#include "platform/links.h"
#include "platform/loosened_item.h"
#include "platform/own_process.h"
#include "platform/random.h"
#include "platform/replaced_file.h"

#include <cerrno>

#include <sys/stat.h>

namespace havrel {
namespace {

constexpr mode_t kOfOwnerAlone = 0700;

QByteArray folderOf(const QByteArray& path)
{
    return path.first(path.lastIndexOf('/'));
}

class Mender : public platform::WalkVisitor
{
public:
    explicit Mender(qsizetype prefix)
        : m_prefix(prefix)
    {
    }

    void visit(const platform::WalkedFolder& folder) override
    {
        note(folder.path(), folder.reach() + "/.");
        for (const platform::WalkedItem& each : folder.items())
            mend(folder.pathOf(each), folder.reachOf(each));
    }
    void failed(const QByteArray& path, int /*error*/) override { note(path, path); }

    void mend(const QByteArray& path, const QByteArray& reach)
    {
        (void)platform::digHoles(reach); // a file without holes is whole, too
        note(path, reach);
    }

    [[nodiscard]] const QByteArrayList& readOnly() const { return m_readOnly; }

private:
    void note(const QByteArray& path, const QByteArray& reach)
    {
        struct stat status = {};
        if (::lstat(reach.constData(), &status) == 0 && !S_ISLNK(status.st_mode) && (status.st_mode & S_IWUSR) == 0)
            m_readOnly.append(path.mid(m_prefix));
    }

    qsizetype m_prefix;
    QByteArrayList m_readOnly;
};

} // namespace

RestoredItems::RestoredItems(const QByteArray& into)
    : m_into(into)
    , m_folder(into + "/.havrel-restore-" + QByteArray::number(platform::processID()) + '-' +
               QByteArray::number(platform::random32(), 16))
{
    constexpr mode_t kAsUsual = 0777;
    int error = platform::makeFolders(into, kAsUsual);
    if (error == 0)
        error = platform::makeFolders(m_folder, kOfOwnerAlone);
    if (error != 0)
        HVException::errnoWithName(
            error, kArchiveException, QStringLiteral("cannot restore there: %1").arg(systemErrorText(error)))
            .setStrPath(platform::textOfFileName(into))
            .raise();
}

RestoredItems::~RestoredItems()
{
    (void)platform::removeItem(m_folder);
}

QByteArray RestoredItems::destinationOf(const QByteArray& path) const
{
    return m_into + path.mid(path.lastIndexOf('/'));
}

QByteArrayList RestoredItems::digHolesAndFindReadOnly(const QByteArray& path) const
{
    Mender mender(m_folder.size());
    platform::DirectoryWalk walk(mender, platform::CrossFileSystems::No);
    const QByteArray place = placeOf(path);
    if (walk.walk(place) != 0)
        mender.mend(place, place);
    return mender.readOnly();
}

void RestoredItems::retargetLinks(const QByteArray& path, const QHash<QByteArray, QByteArray>& targets) const
{
    for (auto each = targets.begin(); each != targets.end(); ++each) {
        if (!isAtOrBelow(each.key(), path))
            continue;
        const platform::LoosenedItem folder(folderOf(placeOf(each.key())));
        (void)platform::retargetLink(placeOf(each.key()), each.value()); // no longer a link when the item has changed
    }
}

int RestoredItems::place(const QByteArray& path) const
{
    const QByteArray from = placeOf(path);
    const QByteArray to = destinationOf(path);
    if (const int error = platform::findName(from))
        return error;
    openUpFoldersAbove(path);
    int error = platform::renameItemExclusively(from, to);
    if (error != EACCES)
        return error;
    platform::LoosenedItem item(from); // a folder that may not be written to does not move otherwise
    error = platform::renameItemExclusively(from, to);
    if (error == 0)
        item.movedTo(to);
    return error;
}

/// They were brought back with their modes, which may forbid to take an item out of them.
void RestoredItems::openUpFoldersAbove(const QByteArray& path) const
{
    for (qsizetype slash = path.indexOf('/', 1); slash > 0; slash = path.indexOf('/', slash + 1))
        (void)::chmod(placeOf(path.first(slash)).constData(), kOfOwnerAlone);
}

} // namespace havrel
