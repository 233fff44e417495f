// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace havrel::cli {

// The command-line library gives a meaning to some operands and values that are nothing but names here: it splits
// "[a,b]" into two, ends a subcommand at "++", takes "--x=" for an option whose value follows, and forgets after "--"
// which subcommand the operands belong to. Such arguments are marked before the library sees them and unmarked after.

/// The arguments as the library may see them, without the "--" that ends the options.
///
/// Threads: any thread.
[[nodiscard]] std::vector<std::string> guardedArguments(const std::vector<std::string>& arguments);

/// What a value or operand was before it was guarded.
///
/// Threads: any thread.
[[nodiscard]] std::string unguarded(std::string argument);

} // namespace havrel::cli
