// SPDX-License-Identifier: MIT
#include "messaging/scheduler_proxy.h"

namespace havrel {

void SchedulerProxy::quickCapture(const QByteArrayList& items, const QByteArray& archive) const
{
    send("quickCapture:toRepository:", {QVariantList(items.cbegin(), items.cend()), archive});
}

} // namespace havrel
