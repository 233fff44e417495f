// SPDX-License-Identifier: MIT
#pragma once

namespace havrel {

/// Makes volumes known to archives as "JNVolumeInfo". Done by every program that uses volumes, before its main; again
/// does no harm.
/// \return true
///
/// Threads: any thread.
bool registerVolumeClass();

} // namespace havrel
