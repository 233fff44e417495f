// SPDX-License-Identifier: MIT
#include "platform/bus_request.h"

#include "platform/bus_answers.h"
#include "platform/bus_exports.h"
#include "platform/bus_loop.h"

#include <cerrno>
#include <utility>

namespace havrel::platform {
namespace {

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
