// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/coder.h"

#include <memory>

namespace havrel {

/// Looking up in the process-wide table of archivable classes.

/// The class of that archive name; null when there is none.
///
/// Threads: any thread.
[[nodiscard]] std::shared_ptr<const ArchivableClass> archivableClassNamed(const QString& name);

/// The class that \p object is an instance of; null when it is of none.
///
/// Threads: any thread.
[[nodiscard]] std::shared_ptr<const ArchivableClass> archivableClassOf(const QVariant& object);

/// The rows of this library's own classes.
///
/// Threads: any thread.
[[nodiscard]] ArchivableClass errorArchivableClass();
[[nodiscard]] ArchivableClass indexSetArchivableClass();
[[nodiscard]] ArchivableClass plainExceptionArchivableClass();
[[nodiscard]] ArchivableClass exceptionArchivableClass();
[[nodiscard]] ArchivableClass logLineIdentArchivableClass();
[[nodiscard]] ArchivableClass logLinePinArchivableClass();

} // namespace havrel
