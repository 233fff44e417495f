// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariant>

namespace havrel {

/// Archives: graphs of objects as bytes, in the documented keyed-archive layout (a binary property list with $version,
/// $archiver, $top and $objects), which other programs can read and write too.
///
/// Property-list values, the null object, nil and instances of registered classes (coder.h) can be archived. An object
/// with an identity is written once and shared again by whoever reads it. Bounds: objects nest at most 256 levels and
/// an archive unfolds to at most kMostPropertyListObjects objects. An object inside itself is refused.
///
/// Threads: any thread.

/// Whether every object must be of a class that supports secure coding.
enum class SecureCoding { No, Yes };

/// The archive of \p object, not requiring secure coding.
///
/// \selector dataForRootObject:
/// \throws HVException "Bug" "cannot encode object" with the error: a value inside cannot be archived.
[[nodiscard]] QByteArray dataForRootObject(const QVariant& object);
/// \selector dataForRootObject:requiringSecureCoding:
[[nodiscard]] QByteArray dataForRootObject(const QVariant& object, SecureCoding requiring);

/// The object in \p data, of whatever class this process knows.
///
/// \selector archivedObject
/// \throws HVException "Bug" "invalid archive data" with the error.
[[nodiscard]] QVariant archivedObject(const QByteArray& data);

/// archivedObjectOfClasses() with one class.
///
/// \selector archivedObjectOfClass:
[[nodiscard]] QVariant archivedObjectOfClass(const QByteArray& data, const QString& className);

/// The object in \p data, which must be nil or of one of the classes or their subclasses; so must everything that it
/// holds as a collection. What is inside an instance is restricted by the instance's own class.
///
/// \selector archivedObjectOfClasses:
/// \param classNames archive names: "NSString", "NSNumber", "NSArray", "NSDictionary", "NSData", "NSDate", "NSNull",
///                   names of registered classes; "NSObject" for any that supports secure coding.
/// \throws HVException "Bug" "invalid archive data" with the error.
[[nodiscard]] QVariant archivedObjectOfClasses(const QByteArray& data, const QStringList& classNames);

} // namespace havrel
