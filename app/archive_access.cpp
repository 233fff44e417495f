// SPDX-License-Identifier: MIT
#include "app/archive_access.h"

namespace havrel {

ArchiveAccess& archiveAccess()
{
    static ArchiveAccess access;
    return access;
}

} // namespace havrel
