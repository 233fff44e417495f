// SPDX-License-Identifier: MIT
// Exceptions and errors, as a logger writes them.
#include "diagnostics/backtrace_frame.h"
#include "diagnostics/exception_reason.h"
#include "diagnostics/logr_state.h"
#include "foundation/error.h"

namespace havrel {
namespace {

constexpr int kMostCauses = 100; // an exception can be made its own cause

QString hexadecimal(std::uintptr_t number)
{
    return QString::number(number, 16);
}

/// The value under \p key if it is a \p Value; it is then taken out.
template<class Value>
std::optional<Value> take(QVariantMap& facts, const QString& key)
{
    const auto found = facts.constFind(key);
    if (found == facts.constEnd() || found->metaType() != QMetaType::fromType<Value>())
        return std::nullopt;
    return facts.take(key).template value<Value>();
}

} // namespace

bool Logr::isNewException(const Exception& exception) const
{
    const MutexLock guard(m_state->lastExceptionLock);
    return !m_state->lastException || !m_state->lastException->isSameObject(exception);
}

LogLineIdentPtr Logr::writeException(LogClassification classification,
                                     const UserInfoLogClassifications& map,
                                     const LogLineIdentPtr& inLine,
                                     const Exception& exception)
{
    {
        const MutexLock guard(m_state->lastExceptionLock);
        m_state->lastException = exception;
    }
    const auto own = classification == LogClassification::Preferred
                         ? HVException::preferredLogClassForException(exception)
                         : classification;
    return writeCausal({.classification = own, .map = map, .depth = 0}, inLine, exception);
}

LogLineIdentPtr
Logr::writeCausal(const ExceptionStyle& style, const LogLineIdentPtr& inLine, const Exception& exception)
{
    LogLineIdentPtr line = writeLine(style.classification, inLine, cleanedReason(exception.reason()));
    if (!line)
        return line;
    writeKey(LogClassification::Subrosa, line, QStringLiteral(".Exception"), exception.name());
    QVariantMap facts = exception.userInfo();
    if (const auto error = take<Error>(facts, detail_key::kWrappedError))
        writeError(LogClassification::Failure, style.map, line, *error);
    if (const auto cause = take<Exception>(facts, detail_key::kCause); cause && style.depth < kMostCauses) {
        const auto heading = writeLine(LogClassification::Details, line, QStringLiteral("Cause"));
        const ExceptionStyle deeper{.classification = style.classification, .map = style.map, .depth = style.depth + 1};
        writeCausal(deeper, heading, *cause);
    }
    writeDictionary(LogClassification::Details, style.map, line, facts);
    if (!exception.callStackReturnAddresses().empty())
        writeBacktrace(line, exception.callStackReturnAddresses());
    return line;
}

void Logr::writeBacktrace(const LogLineIdentPtr& inLine, const platform::ReturnAddresses& addresses)
{
    const BacktraceRegistry::Tag tag = m_state->backtraces.tagFor(addresses, m_state->now());
    const auto heading =
        writeLine(LogClassification::Debug, inLine, QStringLiteral("backtrace ") + hexadecimal(tag.key));
    if (!tag.writeFrames || !heading)
        return;
    for (const std::uintptr_t address : addresses)
        writeLine(LogClassification::Debug, heading, backtraceFrameText(address, m_state->symbolAt(address)));
}

LogLineIdentPtr Logr::writeError(LogClassification classification,
                                 const UserInfoLogClassifications& map,
                                 const LogLineIdentPtr& inLine,
                                 const Error& error)
{
    LogLineIdentPtr line = writeLine(classification, inLine, error.localizedDescription());
    if (!line)
        return line;
    if (const QString reason = error.localizedFailureReason(); !reason.isNull())
        writeLine(LogClassification::Details, line, QStringLiteral("reason: ") + reason);
    writeDictionary(LogClassification::Details, map, line, error.userInfo());
    return line;
}

} // namespace havrel
