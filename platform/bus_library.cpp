// SPDX-License-Identifier: MIT
#include "platform/bus_library.h"

#include "platform/systemd_library.h"

#include <optional>

namespace havrel::platform {
namespace {

template<typename Symbol>
bool find(Symbol& symbol, const char* name)
{
    symbol = reinterpret_cast<Symbol>(systemdSymbol(name));
    return symbol != nullptr;
}

std::optional<BusLibrary> loadedLibrary()
{
    BusLibrary library;
    bool complete = find(library.vtableFormat, "sd_bus_object_vtable_format");
#define HAVREL_BUS_FIND(name) complete = find(library.name, #name) && complete;
    HAVREL_BUS_FUNCTIONS(HAVREL_BUS_FIND)
#undef HAVREL_BUS_FIND
    return complete ? std::optional(library) : std::nullopt;
}

} // namespace

const BusLibrary* busLibrary()
{
    static const std::optional<BusLibrary> s_library = loadedLibrary();
    return s_library ? &*s_library : nullptr;
}

} // namespace havrel::platform
