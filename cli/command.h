// SPDX-License-Identifier: MIT
#pragma once

#include "cli/exit_status.h"

#include <QByteArray>
#include <QByteArrayList>

#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace havrel::cli {

/// What a subcommand takes, told to the command-line library. Targets must live until the action has run; values and
/// operands arrive as the bytes that were given.
///
/// Threads: one thread at a time.
class Command
{
public:
    struct Implementation;
    explicit Command(Implementation& implementation);

    /// \param names "--json", or "-0,--null"
    void flag(const char* names, bool& target, const char* help);
    /// An option with a value, given once at most.
    void value(const char* names, const char* placeholder, std::optional<QByteArray>& target, const char* help);
    /// An option with a value that may be repeated; the values in the order in which they were given.
    void values(const char* names, const char* placeholder, QByteArrayList& target, const char* help);
    /// What is no option.
    void operands(const char* placeholder, QByteArrayList& target, const char* help);
    /// None of the options can be given with another one of them.
    void alternatives(std::span<const char* const> names);
    /// The title under which the help shows the options that follow.
    void section(const char* title);
    /// Further text at the end of the help.
    void footer(const char* text);
    /// What the subcommand does once everything is read.
    void action(std::function<ExitStatus()> action);

private:
    Implementation& m_implementation;
};

/// A row of the table of subcommands.
struct Subcommand
{
    const char* group; ///< the first word; "captureprefs"; empty for a subcommand of one word
    const char* name;  ///< the second word; "show"; or the only one
    const char* summary;
    void (*define)(Command& command); ///< called only when this is the subcommand that was given
};

/// A first word and what its subcommands are about.
struct SubcommandGroup
{
    const char* name;
    const char* summary;
};

/// Reads the arguments (without the program's name), runs the subcommand that they name, and answers how it went.
/// Help goes to standard output; wrong usage, in one line, to standard error.
[[nodiscard]] ExitStatus runSubcommand(std::span<const char* const> arguments,
                                       std::span<const SubcommandGroup> groups,
                                       std::span<const Subcommand> subcommands);

/// Thrown by an action that finds the arguments wrong; the text is for people, in UTF-8.
class WrongUsage
{
public:
    explicit WrongUsage(QByteArray reason)
        : m_reason(std::move(reason))
    {
    }
    [[nodiscard]] const QByteArray& reason() const noexcept { return m_reason; }

private:
    QByteArray m_reason;
};

} // namespace havrel::cli
