// SPDX-License-Identifier: MIT
#include "platform/bus_answers.h"

#include "platform/bus_trace.h"

namespace havrel::platform {
namespace {

/// Sends \p answer, which \p made tells to have been made, with \p body.
int sendAnswer(const BusLoop& loop, int made, sd_bus_message* answer, const BusBody& body)
{
    const OwnedBusMessage owned(answer);
    if (made < 0)
        return -made;
    if (const int error = appendBody(answer, body); error != 0)
        return error;
    const int sent = busLibrary()->sd_bus_send(loop.bus(), answer, nullptr);
    traceBusMessage(answer);
    return sent < 0 ? -sent : 0;
}

} // namespace

int sendReply(const BusLoop& loop, sd_bus_message* call, const BusBody& body)
{
    sd_bus_message* answer = nullptr;
    const int made = busLibrary()->sd_bus_message_new_method_return(call, &answer);
    return sendAnswer(loop, made, answer, body);
}

int sendError(const BusLoop& loop, sd_bus_message* call, const QByteArray& name, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const sd_bus_error error{.name = name.constData(), .message = bytes.constData(), ._need_free = 0};
    sd_bus_message* answer = nullptr;
    const int made = busLibrary()->sd_bus_message_new_method_error(call, &answer, &error);
    return sendAnswer(loop, made, answer, {});
}

} // namespace havrel::platform
