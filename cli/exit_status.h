// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::cli {

/// What the program answers to who started it.
enum class ExitStatus {
    Done = 0,
    SomethingFailed = 1, ///< the rest was done, and each failure told on standard error
    WrongUsage = 2,      ///< nothing was done
};

} // namespace havrel::cli
