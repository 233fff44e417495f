// SPDX-License-Identifier: MIT
#pragma once

#include "platform/bus_body.h"
#include "platform/bus_loop.h"

namespace havrel::platform {

/// Answers \p call with \p body.
///
/// \return 0 or an errno value: EINVAL when a value does not fit its type, and nothing was sent.
///
/// Threads: one thread at a time.
[[nodiscard]] int sendReply(const BusLoop& loop, sd_bus_message* call, const BusBody& body);
/// Answers \p call with an error.
///
/// \return 0 or an errno value.
///
/// Threads: one thread at a time.
[[nodiscard]] int sendError(const BusLoop& loop, sd_bus_message* call, const QByteArray& name, const QString& text);

} // namespace havrel::platform
