// SPDX-License-Identifier: MIT
#include "cli/command.h"

#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/raw_arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>
#include <sstream>
#include <vector>

namespace havrel::cli {
namespace {

QByteArrayList unguardedResults(const CLI::Option& option)
{
    QByteArrayList values;
    values.reserve(static_cast<qsizetype>(option.results().size()));
    for (const std::string& each : option.results())
        values.append(QByteArray::fromStdString(unguarded(each)));
    return values;
}

} // namespace

struct Command::Implementation
{
    explicit Implementation(CLI::App& subcommand)
        : app(subcommand)
    {
    }

    CLI::App& app;
    std::vector<std::function<void()>> deliveries; // of what was read, to the targets
    std::function<ExitStatus()> action;
};

Command::Command(Implementation& implementation)
    : m_implementation(implementation)
{
}

void Command::flag(const char* names, bool& target, const char* help)
{
    const CLI::Option* option = m_implementation.app.add_flag(names)->description(help)->disable_flag_override();
    m_implementation.deliveries.emplace_back([option, &target] { target = option->count() > 0; });
}

void Command::value(const char* names, const char* placeholder, std::optional<QByteArray>& target, const char* help)
{
    const CLI::Option* option = m_implementation.app.add_option(names)->description(help)->type_name(placeholder);
    m_implementation.deliveries.emplace_back([option, &target] {
        if (option->count() > 0)
            target = unguardedResults(*option).constFirst();
    });
}

void Command::values(const char* names, const char* placeholder, QByteArrayList& target, const char* help)
{
    const CLI::Option* option = m_implementation.app.add_option(names)
                                    ->description(help)
                                    ->type_name(placeholder)
                                    ->expected(-1)
                                    ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                                    ->allow_extra_args(false); // one value each time it is given
    m_implementation.deliveries.emplace_back([option, &target] { target = unguardedResults(*option); });
}

void Command::operands(const char* placeholder, QByteArrayList& target, const char* help)
{
    const CLI::Option* option = m_implementation.app.add_option(placeholder)
                                    ->description(help)
                                    ->expected(-1)
                                    ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    m_implementation.deliveries.emplace_back([option, &target] { target = unguardedResults(*option); });
}

void Command::alternatives(std::span<const char* const> names)
{
    std::vector<const CLI::Option*> options;
    for (const char* name : names)
        options.push_back(m_implementation.app.get_option(name));
    // The library's own exclusion would repeat the names of all others at each of them in the help.
    m_implementation.deliveries.emplace_back([options = std::move(options)] {
        const CLI::Option* given = nullptr;
        for (const CLI::Option* each : options) {
            if (each->count() == 0)
                continue;
            if (given != nullptr)
                throw WrongUsage(QByteArray::fromStdString(given->get_name() + " and " + each->get_name()) +
                                 " cannot be given together");
            given = each;
        }
    });
}

void Command::section(const char* title)
{
    m_implementation.app.option_defaults()->group(title);
}

void Command::footer(const char* text)
{
    m_implementation.app.footer(text);
}

void Command::action(std::function<ExitStatus()> action)
{
    m_implementation.action = std::move(action);
}

namespace {

/// What is typed to get there: "havrel captureprefs".
std::string wordsTo(const CLI::App& app)
{
    const CLI::App* parent = app.get_parent();
    return parent ? wordsTo(*parent) + ' ' + app.get_name() : app.get_name();
}

std::string namesOf(const std::vector<const CLI::App*>& apps)
{
    std::string names;
    for (const CLI::App* each : apps)
        names += (names.empty() ? "" : ", ") + each->get_name();
    return names;
}

/// The program's first words, of which only the one that is given has its second words made, and only the one of those
/// that is given its options: a start is to cost no more than what it needs.
class Program
{
public:
    Program(std::span<const SubcommandGroup> groups, std::span<const Subcommand> subcommands)
        : m_app("Reads and writes capture preferences, checks exclusion patterns, asks the service for the rest, "
                "and brings Havrel's commands to file managers.",
                "havrel")
    {
        m_app.set_version_flag("--version", "havrel " HAVREL_VERSION, "Show the version and exit");
        m_app.set_help_flag("-h,--help", "Show this help and exit");
        m_app.require_subcommand(1);
        m_app.footer("Exit status: 0 all good; 1 something failed, the rest was done; 2 wrong usage."
                     "\n'havrel SUBCOMMAND --help' tells more.");
        for (const SubcommandGroup& each : groups)
            addGroup(each, subcommands);
        for (const Subcommand& each : subcommands)
            if (*each.group == '\0')
                addSubcommand(m_app, each);
    }

    ExitStatus run(std::vector<std::string> arguments)
    {
        try {
            std::reverse(arguments.begin(), arguments.end()); // as the library wants them
            m_app.parse(std::move(arguments));
            for (const auto& deliver : m_chosen->deliveries)
                deliver();
            return m_chosen->action();
        } catch (const CLI::Success& asked) { // help or version
            std::ostringstream text;
            m_app.exit(asked, text);
            writeRecord(QByteArray::fromStdString(text.str()).trimmed());
            return ExitStatus::Done;
        } catch (const CLI::RequiredError&) { // nothing but subcommands is required
            return wrongUsage(missingSubcommand());
        } catch (const CLI::ParseError& error) {
            return wrongUsage(error.what());
        } catch (const WrongUsage& error) {
            return wrongUsage(error.reason().toStdString());
        }
    }

private:
    void addGroup(const SubcommandGroup& group, std::span<const Subcommand> subcommands)
    {
        CLI::App* app = m_app.add_subcommand(group.name, group.summary);
        app->preparse_callback([this, app, name = std::string_view(group.name), subcommands](std::size_t) {
            app->require_subcommand(1);
            for (const Subcommand& each : subcommands)
                if (each.group == name)
                    addSubcommand(*app, each);
        });
    }

    void addSubcommand(CLI::App& group, const Subcommand& subcommand)
    {
        CLI::App* app = group.add_subcommand(subcommand.name, subcommand.summary);
        app->preparse_callback([this, app, define = subcommand.define](std::size_t) {
            m_chosen = std::make_unique<Command::Implementation>(*app);
            Command command(*m_chosen);
            define(command);
        });
    }

    /// The subcommand that was given, or the group as far as that went.
    [[nodiscard]] const CLI::App& chosenApp() const
    {
        const CLI::App* app = &m_app;
        while (!app->get_subcommands().empty())
            app = app->get_subcommands().front();
        return *app;
    }

    /// Which word is none of the subcommands, if there is one, and which there are.
    [[nodiscard]] std::string missingSubcommand() const
    {
        const CLI::App& group = chosenApp();
        const std::vector<std::string> unknown = group.remaining();
        const std::string own = '"' + wordsTo(group) + '"';
        if (!unknown.empty() && unknown.front().starts_with('-'))
            return own + " has no option \"" + unknown.front() + '"';
        const std::string what =
            unknown.empty() ? " needs a command" : " has no command \"" + unguarded(unknown.front()) + '"';
        return own + what + "; it has " + namesOf(group.get_subcommands([](const CLI::App*) { return true; }));
    }

    ExitStatus wrongUsage(const std::string& reason) const
    {
        std::cerr << "havrel: " << printableName(QByteArray::fromStdString(reason)).constData() << " (see '"
                  << wordsTo(chosenApp()) << " --help')\n";
        return ExitStatus::WrongUsage;
    }

    CLI::App m_app;
    std::unique_ptr<Command::Implementation> m_chosen;
};

} // namespace

ExitStatus runSubcommand(std::span<const char* const> arguments,
                         std::span<const SubcommandGroup> groups,
                         std::span<const Subcommand> subcommands)
{
    return Program(groups, subcommands).run(guardedArguments({arguments.begin(), arguments.end()}));
}

} // namespace havrel::cli
