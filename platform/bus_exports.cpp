// SPDX-License-Identifier: MIT
#include "platform/bus_exports.h"

#include "platform/bus_body.h"

#include <algorithm>
#include <cerrno>

namespace havrel::platform {
namespace {

sd_bus_vtable startOfTable()
{
    sd_bus_vtable start{};
    start.type = _SD_BUS_VTABLE_START;
    start.x.start = {.element_size = sizeof(sd_bus_vtable),
                     .features = _SD_BUS_VTABLE_PARAM_NAMES,
                     .vtable_format_reference = busLibrary()->vtableFormat};
    return start;
}

sd_bus_vtable endOfTable()
{
    sd_bus_vtable end{};
    end.type = _SD_BUS_VTABLE_END;
    return end;
}

BusRequest::Origin originOf(sd_bus_message* message)
{
    const BusLibrary& library = *busLibrary();
    return {.sender = library.sd_bus_message_get_sender(message),
            .path = library.sd_bus_message_get_path(message),
            .interface = library.sd_bus_message_get_interface(message),
            .member = library.sd_bus_message_get_member(message)};
}

} // namespace

ExportedInterface::ExportedInterface(std::weak_ptr<BusLoop> loop, BusInterface declared)
    : m_loop(std::move(loop))
    , m_declared(std::move(declared))
{
    m_table.push_back(startOfTable());
    for (const BusMethod& each : m_declared.methods)
        addMethod(each);
    m_table.push_back(endOfTable());
}

void ExportedInterface::addMethod(const BusMethod& method)
{
    QByteArray names;
    for (const QByteArray& each : method.takesNames + method.answersNames)
        names += each + '\0';
    m_names.append(names);
    sd_bus_vtable row{};
    row.type = _SD_BUS_VTABLE_METHOD;
    row.flags = SD_BUS_VTABLE_UNPRIVILEGED; // who may call is for the bus to say; asking it for each call would block
    row.x.method = {.member = method.name.constData(),
                    .signature = method.takes.constData(),
                    .result = method.answers.constData(),
                    .handler = called,
                    .offset = 0,
                    .names = m_names.constLast().constData()};
    m_table.push_back(row);
}

int ExportedInterface::exportAt(sd_bus* bus,
                                const QByteArray& path,
                                std::unique_ptr<ExportedInterface> exported,
                                OwnedBusSlot& slot)
{
    const BusLibrary& library = *busLibrary();
    sd_bus_slot* added = nullptr;
    if (bus == nullptr)
        return ENOTCONN;
    const int result = library.sd_bus_add_object_vtable(
        bus, &added, path.constData(), exported->m_declared.name.constData(), exported->m_table.data(), exported.get());
    slot.reset(added);
    if (result < 0)
        return -result;
    (void)library.sd_bus_slot_set_destroy_callback(added, ended);
    (void)exported.release(); // to the slot
    return 0;
}

void ExportedInterface::ended(void* self)
{
    const std::unique_ptr<ExportedInterface> last(static_cast<ExportedInterface*>(self));
}

const BusMethod* ExportedInterface::methodNamed(const char* name) const
{
    const auto found = std::find_if(
        m_declared.methods.begin(), m_declared.methods.end(), [&](const BusMethod& each) { return each.name == name; });
    return found == m_declared.methods.end() ? nullptr : &*found;
}

int ExportedInterface::called(sd_bus_message* message, void* self, sd_bus_error* error)
{
    const auto& exported = *static_cast<ExportedInterface*>(self);
    const auto loop = exported.m_loop.lock();
    const BusRequest::Origin origin = originOf(message);
    const BusMethod* method = exported.methodNamed(origin.member.constData());
    QVariantList values;
    if (loop == nullptr || method == nullptr || readBody(message, values) != 0)
        return busLibrary()->sd_bus_error_set(
            error, "org.freedesktop.DBus.Error.InvalidArgs", "These arguments cannot be read");
    const quint64 number =
        loop->hold(std::make_unique<HeldRequest>(OwnedBusMessage(busLibrary()->sd_bus_message_ref(message))));
    method->call(BusRequest(loop, number, method->answers, origin, values));
    return 1;
}

} // namespace havrel::platform
