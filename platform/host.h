// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <optional>

namespace havrel::platform {

/// What the running system tells of itself. A test puts another host in place by replaceHost.
///
/// Threads: any thread.
class Host
{
public:
    Host() = default;
    virtual ~Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    Host(Host&&) = delete;
    Host& operator=(Host&&) = delete;

    /// The kernel's name: "Linux". Empty when unavailable. \source uname(2)
    [[nodiscard]] virtual QByteArray systemName() const = 0;
    /// The kernel's release: "6.1.0-18-amd64". Empty when unavailable. \source uname(2)
    [[nodiscard]] virtual QByteArray release() const = 0;
    /// The host's own name, without a domain. Empty when unavailable. \source uname(2)
    [[nodiscard]] virtual QByteArray hostName() const = 0;
    /// The text of the os-release file, read anew; empty when there is none. Blocks on the disk.
    ///
    /// \source os-release(5): /etc/os-release, else /usr/lib/os-release
    [[nodiscard]] virtual QByteArray osRelease() const = 0;
    /// Processors that this process may run on; at least 1. \source sched_getaffinity(2)
    [[nodiscard]] virtual int activeProcessors() const = 0;
    /// Time since the system was started, suspensions included; nullopt when the clock cannot be read.
    ///
    /// \source clock_gettime(2), CLOCK_BOOTTIME
    [[nodiscard]] virtual std::optional<std::chrono::nanoseconds> timeSinceBoot() const = 0;
};

/// The host in use: the running system, until a test replaces it.
///
/// Threads: any thread.
[[nodiscard]] const Host& host();

/// Puts \p replacement in place, which must outlive its use; a null pointer brings the running system back.
///
/// Threads: one thread at a time, while no other asks the host.
void replaceHost(const Host* replacement);

/// The name of the processor architecture that this program was built for: "x86_64", "arm64", else the compiler's
/// target as the kernel names it.
///
/// Threads: any thread.
[[nodiscard]] QByteArray architectureName();

/// A kernel release as one number, major << 16 | minor << 8 | patch: "6.1.12-3" is 0x6010C. Missing numbers are 0;
/// minor and patch beyond 255 count as 255, as the kernel's own version number has it, major beyond 65535 as 65535.
/// 0 for a text that does not begin with a number.
///
/// \source KERNEL_VERSION in linux/version.h
///
/// Threads: any thread.
[[nodiscard]] std::uint32_t packedVersionOfRelease(QByteArrayView release);

} // namespace havrel::platform
