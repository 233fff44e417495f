// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/error.h"

#include <optional>

namespace havrel {

/// The answer of a validation: true, or false with what is wrong.
///
/// Threads: const members any thread, others one at a time.
struct Validity
{
    std::optional<Error> error; ///< none: valid

    explicit operator bool() const noexcept { return !error; }
};

} // namespace havrel
