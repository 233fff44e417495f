// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace havrel::platform {

/// The assignments of an os-release file, by name: names are upper-case letters, digits and underscores, values are
/// read as a shell reads them (single and double quotes, backslashes), without expansion. Comments, empty lines and
/// lines that are no assignment are passed over; of two assignments to one name the later holds. Bytes that are not
/// UTF-8 become U+FFFD.
///
/// \source os-release(5)
///
/// Threads: any thread.
[[nodiscard]] QMap<QByteArray, QString> parseOSRelease(const QByteArray& text);

} // namespace havrel::platform
