// SPDX-License-Identifier: MIT
#include "platform/bus_connection.h"
#include "tests/support/scripted_bus.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

using namespace havrel;

/// Whatever a bus says after its greeting: what reaches a handler is what its method takes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const bytes = reinterpret_cast<const char*>(data);
    const tests::ScriptedBus bus(QByteArray(bytes, static_cast<qsizetype>(size)));
    std::atomic<bool> isLost = false;
    platform::BusConnection connection({.address = bus.address(), .disconnected = [&] {
                                            isLost = true;
                                            isLost.notify_one();
                                        }});
    const platform::BusMethod ask{.name = "ask", .takes = "a{say}", .call = [](platform::BusRequest request) {
                                      if (request.values().size() != 1 ||
                                          request.values().constFirst().typeId() != QMetaType::QVariantMap)
                                          __builtin_trap();
                                  }};
    platform::BusRegistration exported;
    if (connection.open() != 0 || connection.exportInterface("/com/havrel/Service",
                                                             {.name = "com.havrel.Services", .methods = {ask}},
                                                             exported) != 0)
        __builtin_trap();
    (void)connection.send({.destination = ":1.9", .path = "/", .interface = "com.havrel", .member = "Ready"});
    isLost.wait(false);
    exported.end();
    return 0;
}
