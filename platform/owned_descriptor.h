// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace havrel::platform {

/// A file descriptor that is closed with its owner.
///
/// Threads: one thread at a time.
class OwnedDescriptor
{
public:
    OwnedDescriptor() = default;
    explicit OwnedDescriptor(int descriptor) noexcept
        : m_descriptor(descriptor)
    {
    }
    ~OwnedDescriptor() { reset(); }
    OwnedDescriptor(OwnedDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    OwnedDescriptor(const OwnedDescriptor&) = delete;
    OwnedDescriptor& operator=(const OwnedDescriptor&) = delete;

    /// -1 when there is none.
    [[nodiscard]] int get() const noexcept { return m_descriptor; }
    [[nodiscard]] bool isOpen() const noexcept { return m_descriptor >= 0; }
    /// Closes it and tells what a late write to it met with.
    /// \return 0 or an errno value; nothing is owned any more.
    [[nodiscard]] int close() noexcept
    {
        return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0 ? 0 : errno;
    }
    void reset() noexcept
    {
        if (m_descriptor >= 0)
            ::close(std::exchange(m_descriptor, -1));
    }

private:
    int m_descriptor = -1;
};

} // namespace havrel::platform
