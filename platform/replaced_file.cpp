// SPDX-License-Identifier: MIT
#include "platform/replaced_file.h"

#include "platform/item_attributes.h"
#include "platform/items.h"
#include "platform/owned_descriptor.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

QByteArray folderOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? "." : slash == 0 ? "/" : path.left(slash);
}

/// A file beside the one that it is to become; removed unless it became that.
class Successor
{
public:
    Successor(const QByteArray& path, mode_t mode)
        : m_path(path)
    {
        const QByteArray stem = folderOf(path) + "/.havrel-" + QByteArray::number(::getpid()) + '-';
        for (int i = 0; m_error == EEXIST; ++i) {
            m_name = stem + QByteArray::number(i);
            m_file = OwnedDescriptor(::open(m_name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
            m_error = m_file.isOpen() ? 0 : errno;
        }
    }
    ~Successor()
    {
        if (m_file.isOpen())
            ::unlink(m_name.constData());
    }
    Successor(const Successor&) = delete;
    Successor& operator=(const Successor&) = delete;
    Successor(Successor&&) = delete;
    Successor& operator=(Successor&&) = delete;

    [[nodiscard]] int error() const noexcept { return m_error; }

    int write(const QByteArray& bytes)
    {
        for (qsizetype at = 0; at < bytes.size();) {
            const ssize_t written =
                ::write(m_file.get(), bytes.constData() + at, static_cast<std::size_t>(bytes.size() - at));
            if (written < 0 && errno != EINTR)
                return errno;
            at += written < 0 ? 0 : written;
        }
        return 0;
    }

    int takeAttributesOf(const OwnedDescriptor& old, const struct stat& status)
    {
        if (const int error = copyAttributes(old.get(), m_file.get(), status, AttributeLoss::Refused).error)
            return error;
        return ::futimens(m_file.get(), nullptr) == 0 ? 0 : errno;
    }

    int takePlace()
    {
        if (::fsync(m_file.get()) != 0 || ::rename(m_name.constData(), m_path.constData()) != 0)
            return errno;
        m_file.reset();
        const OwnedDescriptor folder(::open(folderOf(m_path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        (void)::fsync(folder.get()); // the new file is in place whatever this says
        return 0;
    }

private:
    const QByteArray& m_path;
    QByteArray m_name;
    OwnedDescriptor m_file;
    int m_error = EEXIST;
};

/// The file to replace, links followed; not open when there is none.
struct Predecessor
{
    QByteArray path;
    OwnedDescriptor file;
    struct stat status = {};
    int error = 0;
};

Predecessor predecessorAt(const QByteArray& path)
{
    Predecessor old{.path = path, .file = {}};
    if (const int missing = findName(path); missing != 0) {
        old.error = missing == ENOENT ? 0 : missing;
        return old;
    }
    const std::optional<QByteArray> target = realPath(path);
    if (!target) {
        old.error = errno != 0 ? errno : ENOENT;
        return old;
    }
    old.path = *target;
    old.file = OwnedDescriptor(::open(old.path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!old.file.isOpen() || ::fstat(old.file.get(), &old.status) != 0)
        old.error = errno;
    else if (!S_ISREG(old.status.st_mode))
        old.error = S_ISDIR(old.status.st_mode) ? EISDIR : EINVAL;
    return old;
}

int makeFolder(const QByteArray& path, mode_t mode)
{
    const int error = ::mkdir(path.constData(), mode) == 0 ? 0 : errno;
    return itemExists(path + "/.") ? 0 : error;
}

} // namespace

int replaceFile(const QByteArray& path, const QByteArray& bytes, mode_t modeOfNew)
{
    const Predecessor old = predecessorAt(path);
    if (old.error != 0)
        return old.error;
    Successor next(old.path, old.file.isOpen() ? S_IRUSR | S_IWUSR : modeOfNew);
    int error = next.error();
    if (error == 0)
        error = next.write(bytes);
    if (error == 0 && old.file.isOpen())
        error = next.takeAttributesOf(old.file, old.status);
    return error != 0 ? error : next.takePlace();
}

int makeFolders(const QByteArray& path, mode_t mode)
{
    const int error = makeFolder(path, mode);
    if (error != ENOENT || folderOf(path) == path)
        return error;
    const int errorAbove = makeFolders(folderOf(path), mode);
    return errorAbove != 0 ? errorAbove : makeFolder(path, mode);
}

} // namespace havrel::platform
