// SPDX-License-Identifier: MIT
#include "messaging/switchboard_names.h"

#include "foundation/process.h"
#include "platform/identity.h"

namespace havrel::switchboard_names {

QString perUserServiceFor(uid_t effective, uid_t captured)
{
    return kSystemWideService + u'.' + QString::number(effective == 0 ? captured : effective);
}

const QString& perUserService()
{
    static const QString s_name = perUserServiceFor(platform::identity().effectiveUser(), Process::userID());
    return s_name;
}

} // namespace havrel::switchboard_names
