// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace havrel {

class Error;

/// The keyed-archive layout: a dictionary whose $objects are all objects of the graph, referred to by their indexes.
/// Strings and numbers stand there as they are; everything else is a dictionary of fields with a reference to its
/// class, which is an object too. The object at index 0 stands for nil.
///
/// \source the platform's documented keyed-archive layout.
namespace keyed_archive {

inline constexpr QLatin1StringView kVersionKey{"$version"};
inline constexpr QLatin1StringView kArchiverKey{"$archiver"};
inline constexpr QLatin1StringView kTopKey{"$top"};
inline constexpr QLatin1StringView kObjectsKey{"$objects"};
inline constexpr QLatin1StringView kClassKey{"$class"};
inline constexpr QLatin1StringView kClassNameKey{"$classname"};
inline constexpr QLatin1StringView kClassesKey{"$classes"};
inline constexpr QLatin1StringView kRootKey{"root"};
inline constexpr QLatin1StringView kStringField{"NS.string"};
inline constexpr QLatin1StringView kDataField{"NS.data"};
inline constexpr QLatin1StringView kTimeField{"NS.time"};
inline constexpr QLatin1StringView kKeysField{"NS.keys"};
inline constexpr QLatin1StringView kObjectsField{"NS.objects"};

inline constexpr int kVersion = 100'000;
inline constexpr QLatin1StringView kArchiver{"NSKeyedArchiver"};
inline constexpr QLatin1StringView kNil{"$null"};
inline constexpr QLatin1StringView kAnyClass{"NSObject"}; ///< the root of all classes

inline constexpr int kDeepest = 256; ///< levels of objects in objects; a cause within a cause takes two

/// The name under which a field is stored: the layout keeps "$" at the start for itself.
[[nodiscard]] inline QString fieldName(const QString& key)
{
    return key.startsWith(u'$') ? u'$' + key : key;
}

} // namespace keyed_archive

/// Reason of every exception that says that an archive cannot be read.
inline constexpr QLatin1StringView kInvalidArchiveReason{"invalid archive data"};

/// Raise "Bug" "cannot encode object" and "invalid archive data" with the error, or one that says \p fault, half a
/// sentence.
[[noreturn]] void raiseCannotEncode(const QString& fault);
[[noreturn]] void raiseCannotEncode(const Error& error);
[[noreturn]] void raiseInvalidArchive(const QString& fault);
[[noreturn]] void raiseInvalidArchive(const Error& error);

} // namespace havrel
