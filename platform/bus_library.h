// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

namespace havrel::platform {

// The functions of libsystemd that the bus needs, one a line.
#define HAVREL_BUS_FUNCTIONS(ENTRY)                                                                                    \
    ENTRY(sd_bus_add_fallback)                                                                                         \
    ENTRY(sd_bus_add_filter)                                                                                           \
    ENTRY(sd_bus_add_match_async)                                                                                      \
    ENTRY(sd_bus_add_object_vtable)                                                                                    \
    ENTRY(sd_bus_call_async)                                                                                           \
    ENTRY(sd_bus_close_unref)                                                                                          \
    ENTRY(sd_bus_error_free)                                                                                           \
    ENTRY(sd_bus_error_set)                                                                                            \
    ENTRY(sd_bus_get_events)                                                                                           \
    ENTRY(sd_bus_get_fd)                                                                                               \
    ENTRY(sd_bus_get_timeout)                                                                                          \
    ENTRY(sd_bus_get_unique_name)                                                                                      \
    ENTRY(sd_bus_is_ready)                                                                                             \
    ENTRY(sd_bus_message_append_array)                                                                                 \
    ENTRY(sd_bus_message_append_basic)                                                                                 \
    ENTRY(sd_bus_message_close_container)                                                                              \
    ENTRY(sd_bus_message_dump)                                                                                         \
    ENTRY(sd_bus_message_enter_container)                                                                              \
    ENTRY(sd_bus_message_exit_container)                                                                               \
    ENTRY(sd_bus_message_get_destination)                                                                              \
    ENTRY(sd_bus_message_get_errno)                                                                                    \
    ENTRY(sd_bus_message_get_error)                                                                                    \
    ENTRY(sd_bus_message_get_expect_reply)                                                                             \
    ENTRY(sd_bus_message_get_interface)                                                                                \
    ENTRY(sd_bus_message_get_member)                                                                                   \
    ENTRY(sd_bus_message_get_path)                                                                                     \
    ENTRY(sd_bus_message_get_sender)                                                                                   \
    ENTRY(sd_bus_message_get_signature)                                                                                \
    ENTRY(sd_bus_message_new_method_call)                                                                              \
    ENTRY(sd_bus_message_new_method_error)                                                                             \
    ENTRY(sd_bus_message_new_method_return)                                                                            \
    ENTRY(sd_bus_message_new_signal)                                                                                   \
    ENTRY(sd_bus_message_open_container)                                                                               \
    ENTRY(sd_bus_message_peek_type)                                                                                    \
    ENTRY(sd_bus_message_read_array)                                                                                   \
    ENTRY(sd_bus_message_read_basic)                                                                                   \
    ENTRY(sd_bus_message_ref)                                                                                          \
    ENTRY(sd_bus_message_rewind)                                                                                       \
    ENTRY(sd_bus_message_set_auto_start)                                                                               \
    ENTRY(sd_bus_message_set_expect_reply)                                                                             \
    ENTRY(sd_bus_message_unref)                                                                                        \
    ENTRY(sd_bus_new)                                                                                                  \
    ENTRY(sd_bus_open_system)                                                                                          \
    ENTRY(sd_bus_open_user)                                                                                            \
    ENTRY(sd_bus_process)                                                                                              \
    ENTRY(sd_bus_send)                                                                                                 \
    ENTRY(sd_bus_set_address)                                                                                          \
    ENTRY(sd_bus_set_bus_client)                                                                                       \
    ENTRY(sd_bus_set_method_call_timeout)                                                                              \
    ENTRY(sd_bus_slot_set_destroy_callback)                                                                            \
    ENTRY(sd_bus_slot_unref)                                                                                           \
    ENTRY(sd_bus_start)

/// libsystemd's bus functions, by their own names. Loaded, not linked: see systemdSymbol.
///
/// Threads: any thread; what the functions work on belongs to one thread.
struct BusLibrary
{
#define HAVREL_BUS_MEMBER(name) decltype(&::name) name = nullptr;
    HAVREL_BUS_FUNCTIONS(HAVREL_BUS_MEMBER)
#undef HAVREL_BUS_MEMBER
    const unsigned* vtableFormat = nullptr; ///< sd_bus_object_vtable_format
};

/// Null where the library is not installed or lacks one of the functions.
[[nodiscard]] const BusLibrary* busLibrary();

} // namespace havrel::platform
