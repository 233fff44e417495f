// SPDX-License-Identifier: MIT
#include "foundation/name_order.h"

#include "platform/collation.h"

namespace havrel {

std::strong_ordering finderLikeCompare(QStringView name, QStringView other)
{
    return platform::collate(name, other);
}

} // namespace havrel
