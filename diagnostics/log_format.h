// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

#include <fmt/core.h>

namespace havrel {

/// \p format with its arguments, as text. Texts go through without loss, lone surrogates included; bytes of `char`
/// strings that are not UTF-8 become file-name surrogates (platform/file_names.h). A format that does not fit its
/// arguments, possible only where it is not checked by the compiler, gives the format itself.
///
/// Threads: any thread.
[[nodiscard]] QString formattedText(fmt::string_view format, fmt::format_args arguments);

} // namespace havrel

/// Texts among the arguments of a format; takes width and alignment like any string.
template<>
struct fmt::formatter<QString> : fmt::formatter<fmt::string_view>
{
    auto format(const QString& text, fmt::format_context& context) const -> fmt::format_context::iterator;
};

/// Values among the arguments of a format: their description, "(null)" for nil.
template<>
struct fmt::formatter<QVariant> : fmt::formatter<fmt::string_view>
{
    auto format(const QVariant& value, fmt::format_context& context) const -> fmt::format_context::iterator;
};
