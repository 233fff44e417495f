// SPDX-License-Identifier: MIT
#include "platform/bus_registration.h"

#include "platform/bus_loop.h"

#include <utility>

namespace havrel::platform {

BusRegistration::BusRegistration(std::weak_ptr<BusLoop> loop, quint64 held)
    : m_loop(std::move(loop))
    , m_held(held)
{
}

BusRegistration::~BusRegistration()
{
    end();
}

BusRegistration::BusRegistration(BusRegistration&& other) noexcept
    : m_loop(std::exchange(other.m_loop, {}))
    , m_held(std::exchange(other.m_held, 0))
{
}

BusRegistration& BusRegistration::operator=(BusRegistration&& other) noexcept
{
    std::swap(m_loop, other.m_loop);
    std::swap(m_held, other.m_held);
    return *this;
}

void BusRegistration::end()
{
    const quint64 held = std::exchange(m_held, 0);
    if (const auto loop = std::exchange(m_loop, {}).lock())
        loop->run([&] { (void)loop->release(held); });
}

} // namespace havrel::platform
