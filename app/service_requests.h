// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/pasteboard.h"

namespace havrel {

/// What other programs may ask of the service application. `ServiceFace` calls it for each request that came by the
/// bus, in the order in which they came, one event of the main loop a request. The caller of the bus has been answered
/// by then, so that a request may take as long as it likes, run event loops of its own (further requests are delivered
/// in them), and fail only by log or alert. When the caller has handed over an activation token, it stands in the
/// environment as XDG_ACTIVATION_TOKEN while the request runs.
///
/// What a request throws is logged and goes no further.
///
/// Threads: the main thread only.
class ServiceRequests
{
public:
    ServiceRequests() = default;
    virtual ~ServiceRequests();
    ServiceRequests(const ServiceRequests&) = delete;
    ServiceRequests& operator=(const ServiceRequests&) = delete;
    ServiceRequests(ServiceRequests&&) = delete;
    ServiceRequests& operator=(ServiceRequests&&) = delete;

    /// Reveal the items of \p pasteboard in an archive that the user chooses.
    virtual void revealInArchive(const Pasteboard& pasteboard) = 0;
    /// Capture the items of \p pasteboard into an archive that the user chooses.
    virtual void captureToArchive(const Pasteboard& pasteboard) = 0;
    /// Open the window with the capture preferences of the items of \p pasteboard.
    virtual void setCapturePreferences(const Pasteboard& pasteboard) = 0;
};

/// One of them.
using ServiceRequest = void (ServiceRequests::*)(const Pasteboard& pasteboard);

} // namespace havrel
