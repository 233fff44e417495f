// SPDX-License-Identifier: MIT
#include "diagnostics/null_logr.h"

#include <utility>

namespace havrel {
namespace {

std::atomic_flag s_saidInThisProcess;

} // namespace

NullLogr::NullLogr()
    : NullLogr(platform::writeToConsole, s_saidInThisProcess)
{
}

NullLogr::NullLogr(ConsoleSink sink, std::atomic_flag& said)
    : m_sink(std::move(sink))
    , m_said(said)
{
}

LogLineIdentPtr NullLogr::writeLine(LogClassification, const LogLineIdentPtr& inLine, const LogMessage&)
{
    if (!m_said.test_and_set())
        m_sink(platform::JournalPriority::Notice, QStringLiteral("log output is being discarded"));
    return inLine ? inLine->next() : nullptr;
}

} // namespace havrel
