// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/component_proxy.h"

#include <QByteArrayList>

namespace havrel {

/// What this program says to the scheduler (protocols::scheduling).
///
/// Threads: any thread.
class SchedulerProxy : public ComponentProxy
{
public:
    using ComponentProxy::ComponentProxy;

    /// Asks for a capture right away. \param items paths, as the bytes of the file system. \param archive its path.
    /// \selector quickCapture:toRepository:
    void quickCapture(const QByteArrayList& items, const QByteArray& archive) const;
};

} // namespace havrel
