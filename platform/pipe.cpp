// SPDX-License-Identifier: MIT
#include "platform/pipe.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::platform {

Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    return {OwnedDescriptor(ends[0]), OwnedDescriptor(ends[1])};
}

QByteArray readAvailable(int descriptor)
{
    constexpr qsizetype kMost = 64LL * 1024; // what a pipe holds
    QByteArray chunk(kMost, Qt::Uninitialized);
    ssize_t count = -1;
    do
        count = ::read(descriptor, chunk.data(), static_cast<std::size_t>(kMost));
    while (count < 0 && errno == EINTR);
    return chunk.first(count > 0 ? count : 0);
}

} // namespace havrel::platform
