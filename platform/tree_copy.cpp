// SPDX-License-Identifier: MIT
#include "platform/tree_copy.h"

#include "platform/item_calls.h"
#include "platform/item_contents.h"
#include "platform/items.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr int kOpenToRead = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
constexpr int kMakeFile = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
constexpr int kHoldItem = O_PATH | O_NOFOLLOW;

int look(int folder, const char* name, struct stat& status)
{
    return itemCalls().fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

/// The text of a link, of any length.
int readLink(int folder, const char* name, QByteArray& text)
{
    for (qsizetype size = 256;; size *= 2) {
        text.resize(size);
        const ssize_t length = ::readlinkat(folder, name, text.data(), static_cast<std::size_t>(size));
        if (length < 0)
            return errno;
        if (length == size)
            continue;
        text.truncate(length);
        return 0;
    }
}

} // namespace

TreeCopy::TreeCopy(const ItemPlace& to, AttributeLoss loss)
    : m_place(to)
    , m_loss(loss)
{
}

AttributeOutcome TreeCopy::copy(const ItemPlace& from)
{
    const Pair pair{from.folder(), from.name(), m_place.folder(), m_place.name()};
    struct stat status;
    int error = look(pair.fromFolder, pair.from, status);
    if (error == 0)
        error = S_ISDIR(status.st_mode) ? enter(pair) : copyOther(pair, status);
    while (error == 0 && !m_levels.empty())
        error = step();
    return {error, m_lost};
}

void TreeCopy::takeBack()
{
    removeCreated(m_place, std::exchange(m_created, {}));
}

int TreeCopy::copyOther(const Pair& pair, const struct stat& status)
{
    if (refusesMountPoints() && isMountPoint(pair.fromFolder, pair.from))
        return EBUSY;
    const bool severalNames = status.st_nlink > 1;
    if (!severalNames || !linkToCopy(pair, status)) {
        if (const int error = S_ISREG(status.st_mode) ? copyFile(pair, status) : makeOther(pair, status); error != 0)
            return error;
        if (severalNames)
            m_links.emplace(identityOf(status), pathOfCopy(pair.to));
    }
    return 0;
}

/// A link, pipe, socket or device.
int TreeCopy::makeOther(const Pair& pair, const struct stat& status)
{
    int error = 0;
    m_originals.push_back(copiedItem(status));
    const mode_t mode = (status.st_mode & S_IFMT) | S_IRUSR | S_IWUSR;
    if (S_ISLNK(status.st_mode))
        error = copyLink(pair);
    else if (itemCalls().mknodat(pair.toFolder, pair.to, mode, status.st_rdev) != 0)
        error = errno;
    if (error == 0)
        error = noteCreated(pair.toFolder, pair.to);
    return error == 0 ? copyAttributesByName(pair, status) : error;
}

/// \param looked by which links to the copy are made later: it must be the very item.
int TreeCopy::copyFile(const Pair& pair, const struct stat& looked)
{
    const OwnedDescriptor original(itemCalls().openat(pair.fromFolder, pair.from, kOpenToRead, 0));
    struct stat status;
    if (!original.isOpen() || ::fstat(original.get(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode) || identityOf(status) != identityOf(looked)) // it has become something else
        return ESTALE;
    OwnedDescriptor copy(itemCalls().openat(pair.toFolder, pair.to, kMakeFile, S_IRUSR | S_IWUSR));
    if (!copy.isOpen())
        return errno;
    m_originals.push_back(copiedItem(status));
    int error = noteCreated(copy.get(), "");
    if (error == 0)
        error = copyContents(original.get(), copy.get(), status.st_size);
    if (error == 0)
        error = keepAttributes(original.get(), copy.get(), status);
    const int late = copy.close();
    return error != 0 ? error : late;
}

int TreeCopy::copyLink(const Pair& pair)
{
    QByteArray text;
    if (const int error = readLink(pair.fromFolder, pair.from, text); error != 0)
        return error;
    return itemCalls().symlinkat(text.constData(), pair.toFolder, pair.to) == 0 ? 0 : errno;
}

/// \param status from before the original was read: even reading a link's text changes a time.
int TreeCopy::copyAttributesByName(const Pair& pair, const struct stat& status)
{
    const OwnedDescriptor original(itemCalls().openat(pair.fromFolder, pair.from, kHoldItem, 0));
    const OwnedDescriptor copy(itemCalls().openat(pair.toFolder, pair.to, kHoldItem, 0));
    if (!original.isOpen() || !copy.isOpen())
        return errno;
    return keepAttributes(original.get(), copy.get(), status);
}

int TreeCopy::keepAttributes(int original, int copy, const struct stat& status)
{
    const AttributeOutcome outcome = copyAttributes(original, copy, status, m_loss);
    m_lost = m_lost || outcome.lost;
    return outcome.error;
}

/// Whether another name of the same item was copied before and its copy could be given this name too.
bool TreeCopy::linkToCopy(const Pair& pair, const struct stat& status)
{
    const auto first = m_links.find(identityOf(status));
    return first != m_links.end() &&
           itemCalls().linkat(m_place.folder(), first->second.constData(), pair.toFolder, pair.to, 0) == 0;
}

QByteArray TreeCopy::pathOfCopy(const char* name) const
{
    return m_path.isEmpty() ? QByteArray(name) : m_path + '/' + name;
}

/// Notes the item \p name, or \p folder itself for no name.
int TreeCopy::noteCreated(int folder, const char* name)
{
    struct stat status;
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH) != 0)
        return errno;
    m_created.push_back(status.st_ino);
    return 0;
}

int TreeCopy::enter(const Pair& pair)
{
    if (const int error = m_from.enter(pair.fromFolder, pair.from); error != 0)
        return error;
    int error = refuseLast();
    if (error == 0)
        error = makeFolder(pair);
    if (error != 0) {
        m_from.leave();
        return error;
    }
    m_levels.push_back({{}, {}, m_path.size()});
    m_path = pathOfCopy(pair.to);
    if (::fstat(m_from.last(), &m_levels.back().status) != 0)
        return errno;
    m_originals.push_back(copiedItem(m_levels.back().status));
    return copyFiles();
}

/// Whether the folder just entered must not be copied: it is the copy itself, which a mount brought into the tree, or
/// something is mounted there that a move could not remove afterwards.
int TreeCopy::refuseLast() const
{
    if (m_top == m_from.identityOfLast())
        return EINVAL;
    return refusesMountPoints() && isMountPoint(m_from.last()) ? EBUSY : 0;
}

/// Makes the copy of a folder and goes into it. Until it is finished nobody else can.
int TreeCopy::makeFolder(const Pair& pair)
{
    if (itemCalls().mkdirat(pair.toFolder, pair.to, S_IRWXU) != 0)
        return errno;
    int error = noteCreated(pair.toFolder, pair.to);
    if (error == 0)
        error = m_to.enter(pair.toFolder, pair.to);
    // A default access list of the folder above may take the right to go in from its owner.
    if (error == 0 && ::fchmod(m_to.last(), S_IRWXU) != 0)
        error = errno;
    if (error == 0 && !m_top)
        m_top = m_to.identityOfLast();
    return error;
}

int TreeCopy::copyFiles()
{
    if (const int error = m_reader.read(m_from.last()); error != 0)
        return error;
    m_levels.back().subfolders = m_reader.subfolders();
    for (const WalkedItem& item : m_reader.items())
        if (const int error = copyChild(item.name.data()); error != 0)
            return error;
    return 0;
}

/// An entry of the folder that is being read.
int TreeCopy::copyChild(const char* name)
{
    struct stat status;
    int error = look(m_from.last(), name, status);
    if (error == 0 && S_ISDIR(status.st_mode)) { // it has become a folder: its turn comes with the others
        m_levels.back().subfolders.emplace_back(name);
        return 0;
    }
    if (error == 0)
        error = copyOther({m_from.last(), name, m_to.last(), name}, status);
    return vanished(error, name) ? 0 : error;
}

/// Whether an error means that an entry of the last folder is not there any more.
bool TreeCopy::vanished(int error, const char* name) const
{
    struct stat status;
    return error == ENOENT && look(m_from.last(), name, status) == ENOENT;
}

int TreeCopy::copySubfolder(const char* name)
{
    struct stat status;
    int error = look(m_from.last(), name, status);
    if (error == 0 && !S_ISDIR(status.st_mode))
        return copyChild(name);
    if (error == 0)
        error = enter({m_from.last(), name, m_to.last(), name});
    return vanished(error, name) ? 0 : error;
}

int TreeCopy::step()
{
    std::vector<QByteArray>& subfolders = m_levels.back().subfolders;
    if (subfolders.empty())
        return leave();
    const QByteArray name = std::move(subfolders.back());
    subfolders.pop_back();
    return copySubfolder(name.constData());
}

/// A folder gets its attributes last: what is put into it changes its times, and its mode may forbid that.
int TreeCopy::leave()
{
    int error = m_from.openAbove();
    if (error == 0)
        error = m_to.openAbove();
    if (error == 0)
        error = keepAttributes(m_from.last(), m_to.last(), m_levels.back().status);
    if (error != 0)
        return error;
    m_from.leave();
    m_to.leave();
    m_path.truncate(m_levels.back().pathLength);
    m_levels.pop_back();
    return 0;
}

} // namespace havrel::platform
