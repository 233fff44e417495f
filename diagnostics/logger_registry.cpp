// SPDX-License-Identifier: MIT
#include "diagnostics/logger_registry.h"

#include "diagnostics/nslog_logr.h"
#include "diagnostics/null_logr.h"

namespace havrel {
namespace {

std::unique_ptr<LoggerRegistry> makeProcessRegistry()
{
    auto registry = std::make_unique<LoggerRegistry>();
    registry->add(QStringLiteral("NSLogLogr"), [] { return std::make_shared<NSLogLogr>(); });
    registry->add(QStringLiteral("NullLogr"), [] { return std::make_shared<NullLogr>(); });
    return registry;
}

} // namespace

LoggerRegistry& LoggerRegistry::shared()
{
    // Never destroyed: lines may be logged until the very end of the process.
    static LoggerRegistry& s_registry = *makeProcessRegistry().release();
    return s_registry;
}

void LoggerRegistry::add(const QString& className, const LoggerFactory& factory)
{
    const MutexLock guard(m_lock);
    m_factories.insert(className, factory);
}

std::shared_ptr<Logr> LoggerRegistry::make(const QString& className) const
{
    LoggerFactory factory;
    {
        const MutexLock guard(m_lock);
        factory = m_factories.value(className);
    }
    return factory ? factory() : nullptr;
}

} // namespace havrel
