// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/in_process_transport.h"

namespace havrel::tests {

/// Both ends within the process.
class InProcessWorld
{
public:
    [[nodiscard]] XPCTransport& caller() { return m_transport; }
    [[nodiscard]] XPCTransport& server() { return m_transport; }

private:
    InProcessTransport m_transport;
};

} // namespace havrel::tests
