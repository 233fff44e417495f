// SPDX-License-Identifier: MIT
#include "platform/holes.h"

#include "platform/loosened_item.h"
#include "platform/owned_descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr off_t kSmallest = off_t{32} * 1024; // a file worth the trouble, in bytes
constexpr off_t kBlock = 4096;                // what file systems commonly give out, in bytes
constexpr off_t kChunk = 64 * kBlock;         // read at a time

bool isZero(const char* bytes, std::size_t size)
{
    return size > 0 && bytes[0] == '\0' && std::memcmp(bytes, bytes + 1, size - 1) == 0;
}

/// Collects neighbouring blocks of zeros and makes one hole of them.
class Digger
{
public:
    explicit Digger(int file)
        : m_file(file)
    {
    }

    int zerosAt(off_t offset, off_t size)
    {
        if (offset != m_end)
            if (const int error = finish())
                return error;
        m_start = offset == m_end ? m_start : offset;
        m_end = offset + size;
        return 0;
    }
    int finish()
    {
        const off_t start = std::exchange(m_start, 0);
        const off_t end = std::exchange(m_end, 0);
        if (end == start || ::fallocate(m_file, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, start, end - start) == 0)
            return 0;
        return errno;
    }

private:
    int m_file;
    off_t m_start = 0;
    off_t m_end = 0;
};

int digIn(Digger& digger, const QByteArray& chunk, off_t offset)
{
    for (off_t at = 0; at + kBlock <= chunk.size(); at += kBlock)
        if (isZero(chunk.constData() + at, kBlock))
            if (const int error = digger.zerosAt(offset + at, kBlock))
                return error;
    return 0;
}

int dig(int file, off_t size)
{
    Digger digger(file);
    QByteArray chunk(kChunk, Qt::Uninitialized);
    for (off_t at = 0; at < size;) {
        const off_t data = ::lseek(file, at, SEEK_DATA);
        if (data < 0)
            return errno == ENXIO ? digger.finish() : errno; // nothing but a hole up to the end
        at = data - data % kBlock;
        const ssize_t count = ::pread(file, chunk.data(), kChunk, at);
        if (count <= 0)
            return count == 0 ? digger.finish() : errno;
        if (const int error = digIn(digger, chunk.first(count), at))
            return error;
        at += count < kBlock ? kBlock : count - count % kBlock;
    }
    return digger.finish();
}

} // namespace

int digHoles(const QByteArray& path)
{
    const LoosenedItem item(path);
    if (item.error() != 0 || !S_ISREG(item.status().st_mode) || item.status().st_size < kSmallest)
        return item.error();
    const OwnedDescriptor file(::open(path.constData(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen())
        return errno;
    const int error = dig(file.get(), item.status().st_size);
    return error == EOPNOTSUPP || error == ENOSYS ? 0 : error;
}

} // namespace havrel::platform
