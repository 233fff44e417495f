// SPDX-License-Identifier: MIT
#include "platform/bus_trace.h"

#include <QByteArray>

#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace havrel::platform {

bool tracesBus()
{
    static const bool s_traces = qgetenv("HAVREL_TRACE_BUS") == "1";
    return s_traces;
}

void traceBusMessage(sd_bus_message* message)
{
    if (!tracesBus() || message == nullptr)
        return;
    char* text = nullptr;
    size_t length = 0;
    FILE* stream = ::open_memstream(&text, &length);
    if (stream == nullptr)
        return;
    (void)busLibrary()->sd_bus_message_dump(message, stream, SD_BUS_MESSAGE_DUMP_WITH_HEADER);
    (void)busLibrary()->sd_bus_message_rewind(message, 1);
    std::fclose(stream);
    static std::mutex s_oneAtATime;
    const std::lock_guard guard(s_oneAtATime);
    std::fwrite(text, 1, length, stderr);
    std::fflush(stderr);
    std::free(text);
}

} // namespace havrel::platform
