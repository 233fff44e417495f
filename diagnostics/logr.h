// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception.h"
#include "diagnostics/log_classification.h"
#include "diagnostics/log_line_ident.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace havrel {

class Error;

/// The logging facade: its class operations (log...) forward to the one shared logger.
///
/// Threads: any thread.
class Logr
{
public:
    // The class operations that the rest of the house calls. A null in-line means the root log line; each answers the
    // identity of the first line it wrote. Logging never raises into its caller and never waits for output.

    /// \selector log:message:
    static LogLineIdentPtr log(LogClassification classification, const QString& message);
    /// \selector log:inLine:message:
    static LogLineIdentPtr log(LogClassification classification, const LogLineIdentPtr& inLine, const QString& message);
    /// \selector log:inLine:key:value:
    static LogLineIdentPtr
    logKey(LogClassification classification, const LogLineIdentPtr& inLine, const QString& key, const QVariant& value);
    /// \selector log:inLine:exception:
    static LogLineIdentPtr
    logException(LogClassification classification, const LogLineIdentPtr& inLine, const Exception& exception);
    /// \selector log:exception:
    static LogLineIdentPtr logException(LogClassification classification, const Exception& exception);
    /// \selector logException:
    static LogLineIdentPtr logException(const Exception& exception);
    /// \selector log:newException:
    static LogLineIdentPtr logNewException(LogClassification classification, const Exception& exception);
    /// \selector log:inLine:error:
    static LogLineIdentPtr
    logError(LogClassification classification, const LogLineIdentPtr& inLine, const Error& error);
    /// \selector log:placeholder:forKey:
    static LogLineIdentPtr logPlaceholder(LogClassification classification, const QString& text, const QString& key);
    /// \selector debugMessage:
    static LogLineIdentPtr debugMessage(const QString& message);
};

} // namespace havrel
