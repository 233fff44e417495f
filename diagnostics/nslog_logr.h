// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/logr.h"
#include "platform/journal.h"

#include <functional>

namespace havrel {

/// Where console messages go.
using ConsoleSink = std::function<void(platform::JournalPriority, const QString&)>;

/// Writes the bare message, without date, tag or identity, to the system journal, or to standard error where there is
/// no journal; at once, on the caller's thread. Lines of the classification Subrosa are not written.
///
/// | classification                  | priority |
/// |---------------------------------|----------|
/// | Warning, Failure                | error    |
/// | Minutia, Details                | info     |
/// | Debug                           | debug    |
/// | Plain to Caution, and any other | notice   |
///
/// Threads: any thread.
class NSLogLogr : public Logr
{
public:
    NSLogLogr();
    explicit NSLogLogr(ConsoleSink sink);

    /// Answers \p inLine as it is: there are no new identities, and nothing can be nested under the root.
    /// \selector -log:inLine:message:
    LogLineIdentPtr
    writeLine(LogClassification classification, const LogLineIdentPtr& inLine, const LogMessage& message) override;
    /// Nothing. \selector -close
    void close() override;

private:
    ConsoleSink m_sink;
};

} // namespace havrel
