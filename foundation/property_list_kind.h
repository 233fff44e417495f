// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list.h"

#include <QString>

namespace havrel {

/// What a value is in a property list, whichever of the possible C++ types holds it.
enum class PropertyListKind { None, Null, Bool, Signed, Unsigned, Real, Date, Data, String, UID, List, Map };

/// The kind of \p value; None when it has none (nil, foreign types, invalid dates).
///
/// Threads: any thread.
[[nodiscard]] PropertyListKind propertyListKindOf(const QVariant& value);

/// Why a value of kind None cannot be written, as half a sentence: "a value of type QUrl is none".
///
/// Threads: any thread.
[[nodiscard]] QString notAPropertyListValue(const QVariant& value);

/// The errors of both formats: \p fault completes "The property list cannot be read: ..." and its counterpart.
///
/// Threads: any thread.
[[nodiscard]] Error propertyListReadError(const QString& fault, qint64 code = property_list_error::kReadCorrupt);
[[nodiscard]] Error propertyListWriteError(const QString& fault);

/// Faults that both formats share.
namespace property_list_fault {
[[nodiscard]] QString tooDeep();
[[nodiscard]] QString tooManyValues();
} // namespace property_list_fault

} // namespace havrel
