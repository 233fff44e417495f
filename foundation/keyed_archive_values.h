// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list_kind.h"

#include <QString>

namespace havrel {

/// How archives name a class of values; a mutable one reads as the same value.
struct ArchivedValueClass
{
    QLatin1StringView name;
    QLatin1StringView superclass; ///< behind it stands the root class; empty when that is next
    PropertyListKind kind = PropertyListKind::None;
};

/// Null when no class of values has that name. Numbers have none here: they never stand in a dictionary of fields.
///
/// Threads: any thread.
[[nodiscard]] const ArchivedValueClass* archivedValueClassNamed(const QString& name);

/// The class of a value that stands among the objects as it is; null for what must not.
///
/// Threads: any thread.
[[nodiscard]] QString archivedClassOfBareValue(const QVariant& value);

} // namespace havrel
