// SPDX-License-Identifier: MIT
#pragma once

namespace havrel {

/// Makes paths and sub paths known to archives as "JNPath" and "JNSubPath". Done by every program that uses paths,
/// before its main; again does no harm.
/// \return true
///
/// Threads: any thread.
bool registerPathClasses();

} // namespace havrel
