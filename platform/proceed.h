// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::platform {

/// Whether something that goes on is to go on.
enum class Proceed { No, Yes };

} // namespace havrel::platform
