// SPDX-License-Identifier: MIT
#include "platform/extended_attributes.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/xattr.h>

namespace havrel::platform {
namespace {

/// Values up to this many bytes are read without asking for their size first.
constexpr qsizetype kUsualLength = 1024;

AttributeValue readInto(char* buffer, qsizetype capacity, const char* path, const char* name)
{
    const ssize_t size = ::lgetxattr(path, name, buffer, static_cast<std::size_t>(capacity));
    if (size < 0)
        return {errno, {}};
    return {0, QByteArray(buffer, size)};
}

} // namespace

AttributeValue readAttribute(const QByteArray& path, const char* name, qsizetype limit)
{
    if (path.contains('\0'))
        return {EINVAL, {}};
    std::array<char, kUsualLength> usual;
    // A capacity of 0 would ask the kernel for the size only.
    const qsizetype capacity = std::clamp<qsizetype>(limit, 1, kUsualLength);
    AttributeValue value = readInto(usual.data(), capacity, path.constData(), name);
    if (value.error == ERANGE && limit > kUsualLength) {
        QByteArray large(std::min(limit, kLongestAttribute), Qt::Uninitialized);
        value = readInto(large.data(), large.size(), path.constData(), name);
    }
    if (value.bytes.size() > limit)
        return {ERANGE, {}};
    return value;
}

AttributeSize sizeOfAttribute(const QByteArray& path, const char* name)
{
    if (path.contains('\0'))
        return {EINVAL, 0};
    const ssize_t size = ::lgetxattr(path.constData(), name, nullptr, 0);
    if (size < 0)
        return {errno, 0};
    return {0, size};
}

int writeAttribute(const QByteArray& path, const char* name, QByteArrayView value)
{
    if (path.contains('\0'))
        return EINVAL;
    const auto size = static_cast<std::size_t>(value.size());
    return ::lsetxattr(path.constData(), name, value.data(), size, 0) == 0 ? 0 : errno;
}

int removeAttribute(const QByteArray& path, const char* name)
{
    if (path.contains('\0'))
        return EINVAL;
    return ::lremovexattr(path.constData(), name) == 0 ? 0 : errno;
}

} // namespace havrel::platform
