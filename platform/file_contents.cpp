// SPDX-License-Identifier: MIT
#include "platform/file_contents.h"

#include "platform/owned_descriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

constexpr qsizetype kChunk = qsizetype{64} * 1024; // bytes asked for at a time

/// Reads on until the end of the file. Answers 0 or an errno value.
int readToEnd(int descriptor, QByteArray& bytes, qsizetype longest)
{
    while (true) {
        const qsizetype size = bytes.size();
        bytes.resize(size + kChunk);
        const ssize_t count = ::read(descriptor, bytes.data() + size, kChunk);
        const int error = errno;
        bytes.resize(size + (count > 0 ? count : 0));
        if (bytes.size() > longest)
            return EFBIG;
        if (count == 0)
            return 0;
        if (count < 0 && error != EINTR)
            return error;
    }
}

} // namespace

FileContents readFile(const QByteArray& path, qsizetype longest)
{
    if (path.contains('\0'))
        return {{}, ENOENT};
    const OwnedDescriptor file{::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY)};
    if (!file.isOpen())
        return {{}, errno};
    FileContents contents;
    contents.error = readToEnd(file.get(), contents.bytes, longest);
    return contents;
}

} // namespace havrel::platform
