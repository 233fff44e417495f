// SPDX-License-Identifier: MIT
#include "platform/item_attributes.h"

#include "platform/item_calls.h"

#include <QByteArray>
#include <QByteArrayList>

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace havrel::platform {
namespace {

constexpr mode_t kModeBits = 07777;
constexpr QByteArrayView kUserNamespace = "user.";
constexpr std::array<const char*, 2> kAccessLists{"system.posix_acl_access", "system.posix_acl_default"};

/// A path that leads to an open item whatever its kind: calls on attributes refuse descriptors opened with O_PATH, and
/// a link named by such a path is the link itself.
QByteArray pathOf(int descriptor)
{
    return "/proc/self/fd/" + QByteArray::number(descriptor);
}

struct Bytes
{
    int error = 0;
    QByteArray bytes;
};

/// Reads a value of unknown length, which may grow between two calls.
template<class Read>
Bytes readAll(Read read)
{
    for (;;) {
        const ssize_t size = read(nullptr, 0);
        if (size <= 0)
            return {size == 0 ? 0 : errno, {}};
        QByteArray bytes(size, Qt::Uninitialized);
        const ssize_t length = read(bytes.data(), static_cast<std::size_t>(size));
        if (length >= 0)
            return {0, bytes.first(length)};
        if (errno != ERANGE)
            return {errno, {}};
    }
}

Bytes valueOf(const QByteArray& item, const QByteArray& name)
{
    return readAll(
        [&](char* buffer, std::size_t size) { return ::getxattr(item.constData(), name.constData(), buffer, size); });
}

struct Names
{
    int error = 0;
    QByteArrayList names;
};

Names namesOf(const QByteArray& item)
{
    const Bytes list =
        readAll([&](char* buffer, std::size_t size) { return ::listxattr(item.constData(), buffer, size); });
    QByteArrayList names = list.bytes.split('\0');
    names.removeAll(QByteArray());
    return {list.error == ENOTSUP ? 0 : list.error, names};
}

bool isAccessList(const QByteArray& name)
{
    return std::any_of(kAccessLists.begin(), kAccessLists.end(), [&name](const char* each) { return name == each; });
}

bool isUnsupported(int error)
{
    return error == ENOTSUP || error == ENOSYS;
}

class AttributeCopy
{
public:
    AttributeCopy(int from, int to, const struct stat& status, AttributeLoss loss)
        : m_from(pathOf(from))
        , m_to(pathOf(to))
        , m_status(status)
        , m_loss(loss)
    {
    }

    /// The order matters: a new owner costs the capabilities of a file and the set-id bits, a mode changes an access
    /// list, and everything changes the times.
    AttributeOutcome run()
    {
        m_mode = m_status.st_mode & kModeBits;
        copyOwner();
        for (const auto step : {&AttributeCopy::copyExtended,
                                &AttributeCopy::dropForeignAccessLists,
                                &AttributeCopy::copyMode,
                                &AttributeCopy::copyTimes})
            if (const int error = (this->*step)(); error != 0)
                return {error, m_lost};
        return {0, m_lost};
    }

private:
    void copyOwner()
    {
        if (chown(m_status.st_uid, m_status.st_gid) == 0)
            return;
        m_mode &= ~static_cast<mode_t>(S_ISUID);
        if (chown(static_cast<uid_t>(-1), m_status.st_gid) != 0)
            m_mode &= ~static_cast<mode_t>(S_ISGID);
    }

    [[nodiscard]] int chown(uid_t owner, gid_t group) const
    {
        return itemCalls().fchownat(AT_FDCWD, m_to.constData(), owner, group, 0);
    }

    int copyExtended()
    {
        const Names found = namesOf(m_from);
        m_names = found.names;
        for (const QByteArray& name : m_names)
            if (const int error = copyOne(name); error != 0)
                return error;
        return found.error;
    }

    int copyOne(const QByteArray& name)
    {
        const Bytes value = valueOf(m_from, name);
        if (value.error == ENODATA) // removed meanwhile
            return 0;
        int error = value.error;
        if (error == 0)
            error = write(name, value.bytes);
        const bool needed = name.startsWith(kUserNamespace) || isAccessList(name);
        if (error == 0 || !needed)
            return 0;
        if (!isUnsupported(error) || m_loss == AttributeLoss::Refused)
            return error;
        m_lost = true;
        return 0;
    }

    [[nodiscard]] int write(const QByteArray& name, const QByteArray& value) const
    {
        const auto size = static_cast<std::size_t>(value.size());
        return itemCalls().setxattr(m_to.constData(), name.constData(), value.constData(), size, 0) == 0 ? 0 : errno;
    }

    /// The folder of the copy may have given it an access list that the original does not have.
    int dropForeignAccessLists()
    {
        const Names given = namesOf(m_to);
        for (const QByteArray& name : given.names) {
            if (!isAccessList(name) || m_names.contains(name))
                continue;
            if (::removexattr(m_to.constData(), name.constData()) != 0 && errno != ENODATA)
                return errno;
        }
        return given.error;
    }

    int copyMode()
    {
        if (S_ISLNK(m_status.st_mode))
            return 0;
        return itemCalls().chmod(m_to.constData(), m_mode) == 0 ? 0 : errno;
    }

    int copyTimes()
    {
        const std::array<struct timespec, 2> times{m_status.st_atim, m_status.st_mtim};
        return itemCalls().utimensat(AT_FDCWD, m_to.constData(), times.data(), 0) == 0 ? 0 : errno;
    }

    QByteArray m_from;
    QByteArray m_to;
    const struct stat& m_status;
    AttributeLoss m_loss;
    QByteArrayList m_names; // the original's extended attributes
    mode_t m_mode = 0;
    bool m_lost = false;
};

} // namespace

AttributeOutcome copyAttributes(int from, int to, const struct stat& status, AttributeLoss loss)
{
    return AttributeCopy(from, to, status, loss).run();
}

} // namespace havrel::platform
