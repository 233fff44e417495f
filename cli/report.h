// SPDX-License-Identifier: MIT
#pragma once

#include "cli/exit_status.h"

#include <QByteArray>
#include <QString>

namespace havrel::cli {

/// Tells what failed, and keeps in mind that something did.
///
/// Threads: one thread at a time.
class Report
{
public:
    /// One line on standard error: "havrel: ITEM: reason". What was written to standard output before comes first.
    void failure(const QByteArray& item, const QString& reason);
    [[nodiscard]] ExitStatus status() const noexcept { return m_status; }

private:
    ExitStatus m_status = ExitStatus::Done;
};

} // namespace havrel::cli
