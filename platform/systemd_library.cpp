// SPDX-License-Identifier: MIT
#include "platform/systemd_library.h"

#include <cerrno>
#include <cstdlib>

#include <dlfcn.h>

namespace havrel::platform {

void* systemdSymbol(const char* symbol)
{
    static void* const s_library = ::dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    return s_library == nullptr ? nullptr : ::dlsym(s_library, symbol);
}

int notifySupervisor(const char* state)
{
    if (std::getenv("NOTIFY_SOCKET") == nullptr) // NOLINT(concurrency-mt-unsafe)
        return 0;
    using Notify = int (*)(int unsetEnvironment, const char* state);
    const auto notify = reinterpret_cast<Notify>(systemdSymbol("sd_notify"));
    if (notify == nullptr)
        return ENOSYS;
    const int told = notify(0, state);
    return told < 0 ? -told : 0;
}

} // namespace havrel::platform
