// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/pasteboard.h"

namespace havrel {

/// The activation token of a request in the environment, where the toolkit looks for it before it raises a window, as
/// long as this lives; without one, no token. Those of requests in whose event loop this one runs come back.
///
/// Threads: the main thread only.
class ProvidedActivationToken
{
public:
    explicit ProvidedActivationToken(const Pasteboard& pasteboard);
    ~ProvidedActivationToken();
    ProvidedActivationToken(const ProvidedActivationToken&) = delete;
    ProvidedActivationToken& operator=(const ProvidedActivationToken&) = delete;
    ProvidedActivationToken(ProvidedActivationToken&&) = delete;
    ProvidedActivationToken& operator=(ProvidedActivationToken&&) = delete;

private:
    const QByteArray m_before;
};

} // namespace havrel
