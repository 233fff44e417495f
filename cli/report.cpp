// SPDX-License-Identifier: MIT
#include "cli/report.h"

#include "cli/output.h"
#include "cli/printable_text.h"

#include <cstdio>

namespace havrel::cli {

void Report::failure(const QByteArray& item, const QString& reason)
{
    m_status = ExitStatus::SomethingFailed;
    (void)finishOutput(); // its own failure is told at the end
    const QByteArray name = item.isEmpty() ? "\"\"" : printableName(item);
    const QByteArray line = "havrel: " + name + ": " + printableText(reason) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

} // namespace havrel::cli
