// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace havrel {

/// What a tool tip, which takes for rich text what looks like it, shows as the very text; nothing for nothing.
///
/// Threads: any thread.
[[nodiscard]] inline QString plainToolTip(const QString& text)
{
    return text.isEmpty() ? QString() : QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text.toHtmlEscaped());
}

} // namespace havrel
