// SPDX-License-Identifier: MIT
#pragma once

#include "platform/extended_attributes.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>

namespace havrel { // NOLINT(modernize-concat-nested-namespaces): the inner one is documented

/// The attribute that carries an item's capture preferences: a binary property list with a dictionary as its root. A
/// list in XML is read too, because other programs may have written one.
namespace capture_preferences_attribute {

/// What everyone calls it.
inline constexpr QLatin1StringView kName{"com.havrel.prefs"};
/// What the kernel calls it: it wants a namespace before the name. \source xattr(7)
inline constexpr const char* kNameOnDisk = "user.com.havrel.prefs";
/// Readers take this many bytes; a longer value counts as no preferences.
inline constexpr qsizetype kMostBytesRead = 1024;

enum class State {
    Missing,    ///< no attribute, or a file system that keeps none
    Readable,   ///< a dictionary
    Malformed,  ///< no property list, or one whose root is no dictionary
    TooLong,    ///< more than kMostBytesRead
    Unreadable, ///< the system refused
};

/// What an item's attribute holds.
struct Reading
{
    State state = State::Missing;
    QByteArray bytes;       ///< when Readable or Malformed
    QVariantMap dictionary; ///< when Readable
    QString fault;          ///< when Malformed: what is wrong
    int error = 0;          ///< the errno value when there are no bytes
};

/// Asks the kernel for the attribute of the item at \p path, not of what a link points to; blocks on the disk.
///
/// Threads: any thread.
[[nodiscard]] platform::AttributeValue valueFrom(const QByteArray& path);

/// What an errno value of reading means; Readable for 0.
///
/// Threads: any thread.
[[nodiscard]] State stateOf(int error);

/// What the kernel's answer means. Logs nothing.
///
/// Threads: any thread.
[[nodiscard]] Reading readingOf(const platform::AttributeValue& value);

/// Whether \p key is one that FileCapturePreferences reads and writes; other programs may store further ones.
///
/// Threads: any thread.
[[nodiscard]] bool isKnownKey(const QString& key);

/// Whether \p dictionary asks for a treatment that this program does not know, and therefore reads as the normal one:
/// its "capture" is there, but none of "exclude", "ignore" and "scrape".
///
/// Threads: any thread.
[[nodiscard]] bool hasUnknownTreatment(const QVariantMap& dictionary);

/// Logs a Caution when a record of \p size bytes, just written to the item at \p path, is longer than readers take.
///
/// Threads: any thread.
void warnOfLostRecord(const QByteArray& path, qsizetype size);

} // namespace capture_preferences_attribute
} // namespace havrel
