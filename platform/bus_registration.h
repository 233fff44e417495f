// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <memory>

namespace havrel::platform {

class BusLoop;

/// An exported interface or a match, which ends with its owner: then none of its handlers runs any more, nor will.
/// Waits for a running one, except on the event thread.
///
/// Threads: one thread at a time.
class BusRegistration
{
public:
    /// Nothing.
    BusRegistration() = default;
    BusRegistration(std::weak_ptr<BusLoop> loop, quint64 held);
    ~BusRegistration();
    BusRegistration(BusRegistration&& other) noexcept;
    BusRegistration& operator=(BusRegistration&& other) noexcept;
    BusRegistration(const BusRegistration&) = delete;
    BusRegistration& operator=(const BusRegistration&) = delete;

    void end();

private:
    std::weak_ptr<BusLoop> m_loop;
    quint64 m_held = 0;
};

} // namespace havrel::platform
