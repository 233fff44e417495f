// SPDX-License-Identifier: MIT
#include "platform/directory_walk.h"

#include "platform/folder_reader.h"
#include "platform/owned_descriptor.h"

#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

/// Folders above the current one that stay open. Deeper walks close the outermost and come back to them by "..".
constexpr std::size_t kMostOpenFolders = 64;
constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

QByteArray joined(const QByteArray& folder, QByteArrayView name)
{
    QByteArray path;
    path.reserve(folder.size() + 1 + name.size());
    path += folder;
    if (!path.endsWith('/'))
        path += '/';
    return path += name;
}

/// One folder on the way from the root to where the walk is.
struct Level
{
    OwnedDescriptor descriptor;
    dev_t device = 0;
    ino_t inode = 0;
    qsizetype pathLength = 0;
    std::vector<QByteArray> subfolders; // still to be walked, the next one last
    double shareOfEach = 0;             // of the whole walk, for this folder itself and for each subfolder
};

bool sameFolder(int descriptor, const Level& level)
{
    struct stat facts;
    return ::fstat(descriptor, &facts) == 0 && facts.st_dev == level.device && facts.st_ino == level.inode;
}

/// Where the process's descriptors have paths. Empty where that file system is not mounted.
const QByteArray& descriptorFolder()
{
    static const QByteArray folder = ::access("/proc/self/fd", X_OK) == 0 ? "/proc/self/fd/" : "";
    return folder;
}

} // namespace

WalkedFolder::WalkedFolder(const QByteArray& path, int descriptor, std::span<const WalkedItem> items)
    : m_path(path)
    , m_items(items)
{
    m_prefix = descriptorFolder();
    m_prefix = m_prefix.isEmpty() ? joined(path, "") : m_prefix + QByteArray::number(descriptor) + '/';
}

QByteArray WalkedFolder::pathOf(const WalkedItem& item) const
{
    return joined(m_path, item.name);
}

QByteArray WalkedFolder::reach() const
{
    return m_prefix + '.';
}

QByteArray WalkedFolder::reachOf(const WalkedItem& item) const
{
    return joined(m_prefix, item.name);
}

struct DirectoryWalk::State
{
    State(WalkVisitor& toVisit, CrossFileSystems mayCross)
        : visitor(toVisit)
        , cross(mayCross)
    {
    }

    int begin(const QByteArray& root);
    void step();
    void enter(const QByteArray& name);
    void leave();
    void visitTop(double share);
    [[nodiscard]] bool returnTo(Level& level, int below) const;
    void closeOutermost();

    WalkVisitor& visitor;
    CrossFileSystems cross;
    FolderReader reader;
    std::vector<Level> levels;
    QByteArray path; // of the last level
    double done = 0;
};

int DirectoryWalk::State::begin(const QByteArray& root)
{
    if (root.contains('\0'))
        return EINVAL;
    OwnedDescriptor opened(::open(root.constData(), kOpenFolder));
    struct stat facts;
    if (!opened.isOpen() || ::fstat(opened.get(), &facts) != 0)
        return errno;
    path = root;
    done = 0;
    levels.clear();
    levels.push_back({std::move(opened), facts.st_dev, facts.st_ino, path.size(), {}, 0});
    visitTop(1);
    return 0;
}

void DirectoryWalk::State::step()
{
    Level& top = levels.back();
    if (top.subfolders.empty()) {
        leave();
        return;
    }
    const QByteArray name = std::move(top.subfolders.back());
    top.subfolders.pop_back();
    enter(name);
}

void DirectoryWalk::State::enter(const QByteArray& name)
{
    const Level& parent = levels.back();
    const double share = parent.shareOfEach;
    path = joined(path, name);
    OwnedDescriptor opened(::openat(parent.descriptor.get(), name.constData(), kOpenFolder));
    struct stat facts;
    if (!opened.isOpen() || ::fstat(opened.get(), &facts) != 0) {
        visitor.failed(path, errno);
    } else if (cross == CrossFileSystems::Yes || facts.st_dev == parent.device) {
        levels.push_back({std::move(opened), facts.st_dev, facts.st_ino, path.size(), {}, 0});
        closeOutermost();
        visitTop(share);
        return;
    }
    path.truncate(parent.pathLength);
    done += share;
}

void DirectoryWalk::State::visitTop(double share)
{
    Level& top = levels.back();
    if (const int error = reader.read(top.descriptor.get()); error != 0)
        visitor.failed(path, error);
    top.subfolders = reader.subfolders();
    top.shareOfEach = share / static_cast<double>(top.subfolders.size() + 1);
    visitor.visit(WalkedFolder(path, top.descriptor.get(), reader.items()));
    done += top.shareOfEach;
}

void DirectoryWalk::State::leave()
{
    const OwnedDescriptor below = std::move(levels.back().descriptor);
    levels.pop_back();
    if (levels.empty())
        return;
    Level& top = levels.back();
    path.truncate(top.pathLength);
    // Also a level that has nothing left is opened again: the way to the levels above leads through it.
    if (top.descriptor.isOpen() || returnTo(top, below.get()) || top.subfolders.empty())
        return;
    visitor.failed(path, ESTALE);
    top.subfolders.clear();
}

/// Opens a level again. The folder below it may have been moved away meanwhile, so that its ".." is another folder.
bool DirectoryWalk::State::returnTo(Level& level, int below) const
{
    level.descriptor = OwnedDescriptor(::openat(below, "..", kOpenFolder));
    if (level.descriptor.isOpen() && sameFolder(level.descriptor.get(), level))
        return true;
    level.descriptor = OwnedDescriptor(::open(path.constData(), kOpenFolder));
    return level.descriptor.isOpen() && sameFolder(level.descriptor.get(), level);
}

void DirectoryWalk::State::closeOutermost()
{
    if (levels.size() > kMostOpenFolders)
        levels[levels.size() - kMostOpenFolders - 1].descriptor.reset();
}

DirectoryWalk::DirectoryWalk(WalkVisitor& visitor, CrossFileSystems cross)
    : m_state(std::make_unique<State>(visitor, cross))
{
}

DirectoryWalk::~DirectoryWalk() = default;

int DirectoryWalk::walk(const QByteArray& root)
{
    if (const int error = m_state->begin(root); error != 0)
        return error;
    while (!m_state->levels.empty())
        m_state->step();
    m_state->done = 1;
    return 0;
}

double DirectoryWalk::progress() const noexcept
{
    return m_state->done;
}

} // namespace havrel::platform
