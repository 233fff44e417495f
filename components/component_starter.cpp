// SPDX-License-Identifier: MIT
#include "components/component_starter.h"

#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "foundation/thread_annotations.h"
#include "messaging/component_proxy.h"
#include "messaging/protocols.h"
#include "messaging/xpc_connection.h"

#include <array>
#include <optional>

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

/// An attempt to start a component, which whoever waits for it may give up.
class Attempt
{
public:
    /// The first end counts. \param problem null: there is none
    void end(const QString& problem)
    {
        const MutexLock guard(m_lock);
        if (!m_problem)
            m_problem = problem;
        m_change.notifyAll();
    }
    /// Waits for the end. \return the problem
    [[nodiscard]] QString problem(std::chrono::milliseconds limit)
    {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        const MutexLock guard(m_lock);
        bool isInTime = true;
        while (!m_problem && isInTime)
            isInTime = m_change.waitUntil(m_lock, deadline);
        return m_problem.value_or(QStringLiteral("it does not answer"));
    }

private:
    Mutex m_lock;
    ConditionVariable m_change;
    std::optional<QString> m_problem HAVREL_GUARDED_BY(m_lock); // none: it goes on
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
void startComponent(XPCTransport& transport, const QString& identifier, std::chrono::milliseconds limit)
{
    const QString name = starterOf(identifier);
    if (name.isNull())
        return;
    const auto attempt = std::make_shared<Attempt>();
    const XPCConnectionPtr connection = transport.connectionToService(name, xpc_options::kNone);
    connection->setRemoteObjectInterface(std::make_shared<const XPCInterface>(protocols::componentServing()));
    connection->resume();
    const ComponentProxy component(connection->remoteObjectProxyWithErrorHandler(
        [attempt](const Error& error) { attempt->end(error.localizedDescription()); }));
    component.barrier([attempt] { attempt->end({}); });
    if (const QString problem = attempt->problem(limit); !problem.isNull())
        Logr::log(LogClassification::Caution, QStringLiteral("cannot start %1: %2").arg(name, problem));
    connection->invalidate();
}

} // namespace havrel
