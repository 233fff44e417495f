// SPDX-License-Identifier: MIT
#include "components/component_starter.h"

#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "foundation/thread_annotations.h"
#include "messaging/component_proxy.h"
#include "messaging/protocols.h"
#include "messaging/xpc_connection.h"

#include <array>

namespace havrel {
namespace {

struct Starter
{
    QLatin1StringView identifier;
    QLatin1StringView serviceName;
};

constexpr std::array kStarters{
    Starter{QLatin1StringView("com.havrel.scheduler"), QLatin1StringView("com.havrel.Scheduler")},
    Starter{QLatin1StringView("com.havrel.monitor"), QLatin1StringView("com.havrel.Monitor")},
};

/// The end of a wait, which either side may outlive.
class Gate
{
public:
    void open()
    {
        const MutexLock guard(m_lock);
        m_isOpen = true;
        m_change.notifyAll();
    }
    void pass()
    {
        const MutexLock guard(m_lock);
        while (!m_isOpen)
            m_change.wait(m_lock);
    }

private:
    Mutex m_lock;
    ConditionVariable m_change;
    bool m_isOpen HAVREL_GUARDED_BY(m_lock) = false;
};

} // namespace

QString starterOf(const QString& identifier)
{
    for (const Starter& each : kStarters)
        if (each.identifier == identifier)
            return each.serviceName;
    return {};
}

/// A component takes the name when it has published its endpoint.
void startComponent(XPCTransport& transport, const QString& identifier)
{
    const QString name = starterOf(identifier);
    if (name.isNull())
        return;
    const auto gate = std::make_shared<Gate>();
    const XPCConnectionPtr connection = transport.connectionToService(name, xpc_options::kNone);
    connection->setRemoteObjectInterface(std::make_shared<const XPCInterface>(protocols::componentServing()));
    connection->resume();
    const ComponentProxy component(connection->remoteObjectProxyWithErrorHandler([gate, name](const Error& error) {
        Logr::log(LogClassification::Caution,
                  QStringLiteral("cannot start %1: %2").arg(name, error.localizedDescription()));
        gate->open();
    }));
    component.barrier([gate] { gate->open(); });
    gate->pass();
    connection->invalidate();
}

} // namespace havrel
