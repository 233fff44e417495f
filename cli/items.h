// SPDX-License-Identifier: MIT
#pragma once

#include "fs/item_path.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

#include <functional>
#include <optional>

namespace havrel::cli {

class Command;
class Report;

/// What a subcommand works on: paths or "file:" URIs, as operands or NUL-separated from a file.
///
/// Threads: one thread at a time.
class Items
{
public:
    /// Adds the operands and the option to \p command.
    void
    define(Command& command, const char* placeholder = "ITEM...", const char* help = "Path or file: URI of an item");
    /// Calls \p act with the path of each item, in order, as they come. What is no item is told to \p report.
    ///
    /// \throws WrongUsage when nothing was given.
    void forEach(Report& report, const std::function<void(const QByteArray& path)>& act) const;
    /// Takes the first operand away from the items, and answers it. \throws WrongUsage "no <what> given".
    [[nodiscard]] QByteArray takeFirst(const char* what);
    /// Whether the items come from standard input.
    [[nodiscard]] bool readStandardInput() const { return m_from == "-"; }

private:
    QByteArrayList m_operands;
    std::optional<QByteArray> m_from;
};

/// The path that \p item means, or why it means none. Text that begins with "file:" is a URI, everything else a path.
/// Slashes at the end go, also with dots behind them: they would lead through a link to its target.
///
/// Threads: any thread.
[[nodiscard]] ItemPath pathOfItem(const QByteArray& item);

} // namespace havrel::cli
