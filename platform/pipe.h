// SPDX-License-Identifier: MIT
#pragma once

#include "platform/owned_descriptor.h"

#include <QByteArray>

namespace havrel::platform {

/// Both ends of a pipe, neither of which programs that are started inherit.
struct Pipe
{
    OwnedDescriptor readEnd;
    OwnedDescriptor writeEnd;
};

/// A new pipe; both ends are not open when the process has no descriptors left.
///
/// \source pipe2(2) with O_CLOEXEC
///
/// Threads: any thread.
[[nodiscard]] Pipe makePipe();

/// What can be read now, at most 64 KiB; waits until there is something. Empty at the end of the file (nobody holds the
/// write end any more) and on a failure.
///
/// \source read(2)
///
/// Threads: any thread.
[[nodiscard]] QByteArray readAvailable(int descriptor);

} // namespace havrel::platform
