// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace havrel {

class JNFileInfo;

/// Lets go of \p object on the global queue, soon. Entries of a folder keep one another alive: released in place, the
/// end of the first would end the second inside it, and so on, until the stack is full; and whoever lets go of a
/// million entries would have to wait for all of them.
///
/// Threads: any thread.
void releaseLater(std::shared_ptr<JNFileInfo> object) noexcept;

} // namespace havrel
