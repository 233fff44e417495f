// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/key_path.h"

#include <QVariant>

class QMetaProperty;
class QObject;

namespace havrel {

class HVException;

/// A mistake in the use of the property \p name of \p object: details "Class" and "Property".
///
/// Threads: any thread.
[[nodiscard]] HVException propertyBug(const QString& reason, const QObject& object, KeyPath name);

/// The property \p name of \p object.
///
/// Threads: any thread.
/// \throws HVException "Bug" "unknown property" (details "Class", "Property") when its class has none of that name.
[[nodiscard]] QMetaProperty propertyNamed(const QObject& object, KeyPath name);

/// The value at the end of the path: nil when an object on the way is nil or no object. Null objects, null texts and
/// null pointers are nil.
///
/// Threads: one thread at a time.
/// \throws HVException "Bug" "unknown property" for a name that the object at its place does not know.
[[nodiscard]] QVariant valueAtKeyPath(const QObject& object, KeyPath keyPath);

/// Sets the property at the end of the path; nothing when an object on the way is nil. nil resets the property, or
/// makes it its type's default where it cannot be reset.
///
/// Threads: one thread at a time.
/// \throws HVException "Bug" "unknown property" as above; "cannot set property" (details "Class", "Property",
///         "Object": the value) for a property that cannot be written or a value that does not convert to its type.
void setValueAtKeyPath(QObject& object, KeyPath keyPath, const QVariant& value);

/// The object that \p value holds, by pointer, guarded or shared pointer; null when it holds none.
///
/// Threads: any thread.
[[nodiscard]] QObject* objectIn(const QVariant& value);

/// \p value, or nil if it is a null object, a null text or a null pointer to an object.
///
/// Threads: any thread.
[[nodiscard]] QVariant nilIfNull(QVariant value);

} // namespace havrel
