// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstdio>
#include <cstdlib>

#include <systemd/sd-bus.h>

namespace havrel {

[[noreturn]] inline void fail(const char* what)
{
    std::perror(what);
    std::exit(1);
}

/// A connection of the bare library, the peer of ours.
inline sd_bus* bareBus(const QByteArray& address)
{
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.constData()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_start(bus) < 0)
        fail("bare bus");
    return bus;
}

} // namespace havrel
