// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list.h"

#include <QStringView>

namespace havrel {

/// Names that both directions use.
namespace xml_property_list {
inline constexpr QLatin1StringView kUIDKey{"CF$UID"};
} // namespace xml_property_list

/// The XML half of parsePropertyList().
///
/// Threads: any thread.
[[nodiscard]] PropertyListReading readXMLPropertyList(const QByteArray& bytes);

} // namespace havrel
