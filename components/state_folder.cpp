// SPDX-License-Identifier: MIT
#include "components/state_folder.h"

#include "platform/file_names.h"

#include <QDir>

namespace havrel {

QByteArray stateFolder()
{
    const QByteArray given = qgetenv("XDG_STATE_HOME"); // a relative path counts as unset
    const QByteArray base =
        given.startsWith('/') ? given : platform::bytesOfFileName(QDir::homePath()) + "/.local/state";
    return base + "/Havrel";
}

} // namespace havrel
