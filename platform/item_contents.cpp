// SPDX-License-Identifier: MIT
#include "platform/item_contents.h"

#include "platform/item_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

/// Bytes that are read before they are written.
constexpr std::size_t kBufferSize = std::size_t{256} * 1024;
/// Bytes asked of the kernel at once.
constexpr off_t kMostAtOnce = 1 << 30;
constexpr off_t kUnknownEnd = std::numeric_limits<off_t>::max();

/// Whether the kernel means: not this way, try another.
bool isRefusalToCopy(int error)
{
    static constexpr std::array<int, 7> kRefusals{EXDEV, EINVAL, ENOSYS, EOPNOTSUPP, EPERM, EBADF, ETXTBSY};
    return std::find(kRefusals.begin(), kRefusals.end(), error) != kRefusals.end();
}

class ContentsCopy
{
public:
    ContentsCopy(int from, int to)
        : m_from(from)
        , m_to(to)
    {
    }

    int run(off_t size)
    {
        if (size == 0)
            return copyRange(0, kUnknownEnd, true);
        for (off_t start = 0; start < size && !m_ended;) {
            const off_t data = nextData(start, size);
            const off_t hole = nextHole(data, size);
            if (const int error = copyRange(data, hole, m_byHand); error != 0)
                return error;
            start = hole;
        }
        return m_ended ? 0 : setLength(size);
    }

private:
    [[nodiscard]] off_t nextData(off_t start, off_t size) const
    {
        const off_t found = ::lseek(m_from, start, SEEK_DATA);
        if (found >= 0)
            return std::min(found, size);
        return errno == ENXIO ? size : start; // no data any more, or a file system that does not tell
    }

    [[nodiscard]] off_t nextHole(off_t data, off_t size) const
    {
        const off_t found = data < size ? ::lseek(m_from, data, SEEK_HOLE) : size;
        return found > data ? std::min(found, size) : size;
    }

    /// Makes room for a hole at the end, but not for what was cut off meanwhile.
    [[nodiscard]] int setLength(off_t size) const
    {
        struct stat now;
        if (::fstat(m_from, &now) != 0)
            return errno;
        return itemCalls().ftruncate(m_to, std::min(size, now.st_size)) == 0 ? 0 : errno;
    }

    int copyRange(off_t start, off_t end, bool byHand)
    {
        while (start < end && !byHand) {
            off_t fromOffset = start;
            off_t toOffset = start;
            const auto size = static_cast<std::size_t>(std::min(end - start, kMostAtOnce));
            const ssize_t copied = itemCalls().copyFileRange(m_from, &fromOffset, m_to, &toOffset, size);
            if (copied < 0 && errno != EINTR && !isRefusalToCopy(errno))
                return errno;
            // Some file systems copy nothing where there is something to read: only reading tells the end.
            byHand = copied == 0 || (copied < 0 && errno != EINTR);
            start += std::max<ssize_t>(copied, 0);
        }
        m_byHand = byHand;
        return start < end ? copyByHand(start, end) : 0;
    }

    int copyByHand(off_t start, off_t end)
    {
        m_buffer.resize(kBufferSize);
        while (start < end) {
            const auto wanted = static_cast<std::size_t>(std::min<off_t>(end - start, kBufferSize));
            const ssize_t length = itemCalls().pread(m_from, m_buffer.data(), wanted, start);
            if (length < 0 && errno == EINTR)
                continue;
            if (length <= 0) {
                m_ended = length == 0;
                return length == 0 ? 0 : errno;
            }
            if (const int error = write(static_cast<std::size_t>(length), start); error != 0)
                return error;
            start += length;
        }
        return 0;
    }

    [[nodiscard]] int write(std::size_t length, off_t offset) const
    {
        for (std::size_t done = 0; done < length;) {
            const ssize_t written =
                itemCalls().pwrite(m_to, m_buffer.data() + done, length - done, offset + static_cast<off_t>(done));
            if (written < 0 && errno != EINTR)
                return errno;
            if (written == 0)
                return EIO;
            done += static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        }
        return 0;
    }

    int m_from;
    int m_to;
    bool m_byHand = false; // the kernel does not copy between these two
    bool m_ended = false;  // the file was found shorter than it said
    std::vector<char> m_buffer;
};

} // namespace

int copyContents(int from, int to, off_t size)
{
    if (size > 0 && itemCalls().clone(to, from) == 0)
        return 0;
    return ContentsCopy(from, to).run(size);
}

} // namespace havrel::platform
