// SPDX-License-Identifier: MIT
#include "platform/reading_ahead.h"

#include <system_error>

#include <dlfcn.h>

namespace havrel::platform {
namespace {

/// \source FcInit(3): loads the configuration once, whichever thread asks first. The library stays loaded: the
/// toolkit's own reference to it may come later.
void readFonts()
{
    void* const library = ::dlopen("libfontconfig.so.1", RTLD_NOW | RTLD_GLOBAL);
    const auto init = library == nullptr ? nullptr : reinterpret_cast<int (*)()>(::dlsym(library, "FcInit"));
    if (init != nullptr)
        init();
}

} // namespace

ReadingAhead::ReadingAhead()
{
    try {
        m_thread = std::thread(readFonts);
    } catch (const std::system_error&) { // no thread left: all is read when it is needed
    }
}

ReadingAhead::~ReadingAhead()
{
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace havrel::platform
