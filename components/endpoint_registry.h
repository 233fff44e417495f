// SPDX-License-Identifier: MIT
#pragma once

#include "messaging/xpc_endpoint.h"

#include <QString>
#include <QStringList>

#include <map>
#include <optional>

namespace havrel {

/// Which component listens where, by its identifier ("com.havrel.scheduler").
///
/// Threads: one thread at a time.
class EndpointRegistry
{
public:
    /// Tells the connections of the switchboard apart.
    using Client = quint64;

    /// Replaces what is published under that identifier, whoever has published it.
    void publish(const QString& identifier, const XPCEndpoint& endpoint, Client publisher);
    /// Takes back what \p publisher has published; what another one has published since then stays.
    ///
    /// \return whether there was something
    [[nodiscard]] bool redact(const QString& identifier, Client publisher);
    /// Takes back all of \p publisher's, which has gone. \return its identifiers, sorted
    [[nodiscard]] QStringList redactAll(Client publisher);

    [[nodiscard]] std::optional<XPCEndpoint> find(const QString& identifier) const;

private:
    struct Published
    {
        XPCEndpoint endpoint;
        Client publisher = 0;
    };

    std::map<QString, Published> m_published;
};

} // namespace havrel
