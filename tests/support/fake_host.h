// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host.h"

namespace havrel {

/// A host that tells what a test wants, in place from construction to destruction; one at a time. What is captured of
/// the host must be captured anew after both.
class FakeHost final : public platform::Host
{
public:
    FakeHost() { platform::replaceHost(this); }
    ~FakeHost() override { platform::replaceHost(nullptr); }
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;
    FakeHost(FakeHost&&) = delete;
    FakeHost& operator=(FakeHost&&) = delete;

    QByteArray systemName() const override { return name; }
    QByteArray release() const override { return kernel; }
    QByteArray hostName() const override { return "fake"; }
    QByteArray osRelease() const override { return distribution; }
    int activeProcessors() const override { return processors; }
    std::optional<std::chrono::nanoseconds> timeSinceBoot() const override { return uptime; }

    QByteArray name = "Linux";
    QByteArray kernel = "6.1.0-18-amd64";
    QByteArray distribution = "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nVERSION_CODENAME=bookworm\n";
    int processors = 1;
    std::optional<std::chrono::nanoseconds> uptime = std::chrono::seconds(1);
};

} // namespace havrel
