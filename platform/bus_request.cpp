// SPDX-License-Identifier: MIT
#include "platform/bus_request.h"

#include "platform/bus_body.h"
#include "platform/bus_exports.h"
#include "platform/bus_loop.h"

#include <cerrno>
#include <utility>

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
    return sent < 0 ? -sent : 0;
}

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

/// Lets \p send answer the call that is held as \p number, which is then held no more.
template<typename Send>
int answer(const std::weak_ptr<BusLoop>& weakLoop, quint64 number, const Send& send)
{
    int error = ENOTCONN;
    if (const auto loop = weakLoop.lock())
        loop->run([&] {
            if (const auto held = loop->release(number))
                error = send(*loop, static_cast<HeldRequest&>(*held).message());
        });
    return error;
}

} // namespace

BusRequest::BusRequest(
    std::weak_ptr<BusLoop> loop, quint64 message, QByteArray answers, Origin origin, QVariantList values)
    : m_loop(std::move(loop))
    , m_message(message)
    , m_answers(std::move(answers))
    , m_origin(std::move(origin))
    , m_values(std::move(values))
{
}

BusRequest::~BusRequest()
{
    if (m_message != 0)
        (void)fail("org.freedesktop.DBus.Error.Failed", QStringLiteral("The call was not answered"));
}

BusRequest::BusRequest(BusRequest&& other) noexcept
    : m_loop(std::move(other.m_loop))
    , m_message(std::exchange(other.m_message, 0))
    , m_answers(std::move(other.m_answers))
    , m_origin(std::move(other.m_origin))
    , m_values(std::move(other.m_values))
{
}

int BusRequest::reply(const QVariantList& values)
{
    return answer(m_loop, std::exchange(m_message, 0), [&](const BusLoop& loop, sd_bus_message* call) {
        const int error = sendReply(loop, call, {m_answers, values});
        if (error != 0)
            (void)sendError(loop, call, "org.freedesktop.DBus.Error.Failed", QStringLiteral("The answer has no shape"));
        return error;
    });
}

int BusRequest::fail(const QByteArray& name, const QString& text)
{
    return answer(m_loop, std::exchange(m_message, 0), [&](const BusLoop& loop, sd_bus_message* call) {
        return sendError(loop, call, name, text);
    });
}

} // namespace havrel::platform
