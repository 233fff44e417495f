// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/log_line_ident.h"

namespace havrel {

/// A pinned identity: every line logged in it takes the pin's own identity instead of a new child.
///
/// Threads: any thread.
class LogLinePin : public LogLineIdent
{
public:
    /// A pin with the parent and sequence of \p identifier. \selector initWithIdentifier:
    explicit LogLinePin(const LogLineIdent& identifier);
    /// One as an archive has it. \selector initWithCoder:
    [[nodiscard]] static LogLineIdentPtr withCoder(Decoder& decoder);

    [[nodiscard]] LogLineIdentPtr next() override;   ///< the receiver. \selector next
    [[nodiscard]] LogLineIdentPtr pinned() override; ///< the receiver. \selector pinned
};

} // namespace havrel
