// SPDX-License-Identifier: MIT
#include "components/data_folder.h"

#include "platform/desktop_entries.h"

namespace havrel {

QByteArray dataFolder()
{
    return platform::dataFolders().constFirst() + "/Havrel";
}

} // namespace havrel
