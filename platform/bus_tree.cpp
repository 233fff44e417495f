// SPDX-License-Identifier: MIT
#include "platform/bus_tree.h"

#include "platform/bus_answers.h"
#include "platform/bus_exports.h"
#include "platform/bus_loop.h"
#include "platform/held_tree.h"

#include <utility>

namespace havrel::platform {
namespace {

constexpr const char* kFailed = "org.freedesktop.DBus.Error.Failed";

sd_bus_message* messageOf(BusHeld& held)
{
    return static_cast<HeldRequest&>(held).message();
}

QByteArray bytesOf(const char* text)
{
    return {text};
}

} // namespace

BusAnswer::BusAnswer(std::weak_ptr<BusLoop> loop, quint64 held)
    : m_loop(std::move(loop))
    , m_held(held)
{
}

BusAnswer::~BusAnswer()
{
    if (m_held != 0)
        fail(kFailed, QStringLiteral("The call was not answered"));
}

void BusAnswer::reply(const BusBody& body)
{
    const quint64 number = std::exchange(m_held, 0);
    if (const auto loop = m_loop.lock())
        loop->runSoon([&loop = *loop, number, body] {
            const auto held = loop.release(number);
            if (held && sendReply(loop, messageOf(*held), body) != 0)
                (void)sendError(loop, messageOf(*held), kFailed, QStringLiteral("The answer has no shape"));
        });
}

void BusAnswer::fail(const QByteArray& name, const QString& text)
{
    const quint64 number = std::exchange(m_held, 0);
    if (const auto loop = m_loop.lock())
        loop->runSoon([&loop = *loop, number, name, text] {
            if (const auto held = loop.release(number))
                (void)sendError(loop, messageOf(*held), name, text);
        });
}

HeldTree::HeldTree(std::weak_ptr<BusLoop> loop, BusTree tree)
    : m_loop(std::move(loop))
    , m_tree(std::make_shared<const BusTree>(std::move(tree)))
{
}

int HeldTree::serve(sd_bus* bus)
{
    if (bus == nullptr)
        return ENOTCONN;
    sd_bus_slot* slot = nullptr;
    const int result = busLibrary()->sd_bus_add_fallback(bus, &slot, m_tree->prefix.constData(), called, this);
    m_slot.reset(slot);
    return result < 0 ? -result : 0;
}

int HeldTree::called(sd_bus_message* message, void* self, sd_bus_error* error)
{
    const BusLibrary& library = *busLibrary();
    const auto tree = static_cast<HeldTree*>(self)->m_tree; // outlives a call that ends its own tree
    const auto loop = static_cast<HeldTree*>(self)->m_loop.lock();
    BusTreeCall call{.sender = bytesOf(library.sd_bus_message_get_sender(message)),
                     .destination = bytesOf(library.sd_bus_message_get_destination(message)),
                     .path = bytesOf(library.sd_bus_message_get_path(message)),
                     .interface = bytesOf(library.sd_bus_message_get_interface(message)),
                     .member = bytesOf(library.sd_bus_message_get_member(message)),
                     .signature = bytesOf(library.sd_bus_message_get_signature(message, 1)),
                     .values = {},
                     .answer = {}};
    if (loop == nullptr || !tree->takes(call.interface))
        return 0;
    if (readBody(message, call.values) != 0)
        return library.sd_bus_error_set(
            error, "org.freedesktop.DBus.Error.InvalidArgs", "These arguments cannot be read");
    if (library.sd_bus_message_get_expect_reply(message) > 0)
        call.answer = std::make_shared<BusAnswer>(
            loop, loop->hold(std::make_unique<HeldRequest>(OwnedBusMessage(library.sd_bus_message_ref(message)))));
    tree->called(call);
    return 1;
}

} // namespace havrel::platform
