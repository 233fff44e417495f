// SPDX-License-Identifier: MIT
#include "diagnostics/shared_logger.h"

#include "diagnostics/logger_registry.h"
#include "diagnostics/logr.h"
#include "diagnostics/nslog_logr.h"
#include "foundation/dispatch.h"
#include "platform/identity.h"

#include <QScopedValueRollback>
#include <QStringList>

#include <utility>

namespace havrel {
namespace {

QStringList fallbackNames(EffectiveUser user)
{
    const QString console = QStringLiteral("NSLogLogr");
    const QString nowhere = QStringLiteral("NullLogr");
    return user == EffectiveUser::Root ? QStringList{nowhere, console} : QStringList{console, nowhere};
}

std::shared_ptr<Logr> makeIfPossible(const LoggerRegistry& registry, const QString& className)
{
    try {
        return registry.make(className);
    } catch (...) {
        return nullptr; // there is no logger yet that could tell
    }
}

} // namespace

SharedLogger::SharedLogger(const LoggerRegistry& registry, EffectiveUser user)
    : m_registry(registry)
    , m_user(user)
{
}

SharedLogger& SharedLogger::ofProcess()
{
    // Never destroyed: lines may be logged until the very end of the process.
    static SharedLogger& s_shared =
        *std::make_unique<SharedLogger>(LoggerRegistry::shared(),
                                        platform::identity().effectiveUser() == 0 ? EffectiveUser::Root
                                                                                  : EffectiveUser::Ordinary)
             .release();
    return s_shared;
}

std::shared_ptr<Logr> SharedLogger::present() const
{
    const MutexLock guard(m_lock);
    return m_logger;
}

std::shared_ptr<Logr> SharedLogger::get()
{
    if (auto logger = present())
        return logger;
    const MutexLock guard(m_choice);
    if (auto logger = present())
        return logger;
    if (m_choosing)
        return nullptr;
    choose();
    return present();
}

void SharedLogger::choose()
{
    const QScopedValueRollback choosing(m_choosing, true);
    const std::shared_ptr<Logr> fallback = makeFallback();
    if (replace(nullptr, fallback))
        replaceByFileLogger(fallback);
}

std::shared_ptr<Logr> SharedLogger::makeFallback() const
{
    const QStringList names = fallbackNames(m_user);
    for (const QString& name : names)
        if (auto logger = makeIfPossible(m_registry, name))
            return logger;
    throw Exception(QStringLiteral("NSInternalInconsistencyException"),
                    QStringLiteral("could not create fallback Logger; tried ") + names.join(QStringLiteral(", ")));
}

void SharedLogger::replaceByFileLogger(const std::shared_ptr<Logr>& fallback)
{
    try {
        if (auto logger = m_registry.make(QStringLiteral("FileLogr")))
            replace(fallback, logger);
    } catch (...) {
        if (!dynamic_cast<NSLogLogr*>(fallback.get()))
            return;
        fallback->writeLine(LogClassification::Failure,
                            nullptr,
                            QStringLiteral("could not create standard logger; logging to console"));
        fallback->writeException(
            LogClassification::Failure, HVException::userInfoLogClassifications(), nullptr, Exception::fromCurrent());
    }
}

/// Lets go of a logger that was closed. Its queue must not end on itself, which is where a failing write closes it.
void SharedLogger::retire(std::shared_ptr<Logr> logger)
{
    if (logger->loggerQueue().isCurrent())
        onGlobalQueue([logger = std::move(logger)] {});
}

void SharedLogger::set(const std::shared_ptr<Logr>& logger)
{
    std::shared_ptr<Logr> former;
    {
        const MutexLock guard(m_lock);
        former = std::exchange(m_logger, logger);
    }
    if (former != logger)
        closeAndRetire(std::move(former));
}

/// Installs \p logger in place of \p expected; when another was installed meanwhile, that one stays.
bool SharedLogger::replace(const std::shared_ptr<Logr>& expected, const std::shared_ptr<Logr>& logger)
{
    bool replaced = false;
    {
        const MutexLock guard(m_lock);
        replaced = m_logger == expected;
        if (replaced)
            m_logger = logger;
    }
    closeAndRetire(replaced ? expected : logger);
    return replaced;
}

void SharedLogger::closeAndRetire(std::shared_ptr<Logr> logger)
{
    if (!logger)
        return;
    logger->close();
    retire(std::move(logger));
}

void SharedLogger::close()
{
    set(nullptr);
}

} // namespace havrel
