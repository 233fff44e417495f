// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_loop.h"
#include "platform/bus_request.h"

namespace havrel::platform {

/// A call of an exported method that waits for its answer.
///
/// Threads: one thread at a time.
class HeldRequest final : public BusHeld
{
public:
    explicit HeldRequest(OwnedBusMessage message)
        : m_message(std::move(message))
    {
    }
    [[nodiscard]] sd_bus_message* message() const noexcept { return m_message.get(); }

private:
    OwnedBusMessage m_message;
};

/// An interface at an object path, in the form that the library asks for. Belongs to the library's slot: a handler may
/// end its own export, and the library looks at the table once more after that.
///
/// Threads: one thread at a time.
class ExportedInterface
{
public:
    ExportedInterface(std::weak_ptr<BusLoop> loop, BusInterface declared);

    /// Serves \p exported at \p path, as long as \p slot lives.
    /// \return 0 or an errno value
    [[nodiscard]] static int
    exportAt(sd_bus* bus, const QByteArray& path, std::unique_ptr<ExportedInterface> exported, OwnedBusSlot& slot);

private:
    static int called(sd_bus_message* message, void* self, sd_bus_error* error);
    static void ended(void* self);
    [[nodiscard]] const BusMethod* methodNamed(const char* name) const;
    void addMethod(const BusMethod& method);

    std::weak_ptr<BusLoop> m_loop;
    BusInterface m_declared;
    QByteArrayList m_names; // of the parameters, as the table points to them
    std::vector<sd_bus_vtable> m_table;
};

/// An export, as long as it lasts.
///
/// Threads: one thread at a time.
class HeldExport final : public BusHeld
{
public:
    explicit HeldExport(OwnedBusSlot slot)
        : m_slot(std::move(slot))
    {
    }

private:
    OwnedBusSlot m_slot;
};

} // namespace havrel::platform
