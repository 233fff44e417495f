// SPDX-License-Identifier: MIT
// What holds for every subcommand of the program.
#include "tests/support/program_run.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel::tests {
namespace {

const std::array kSubcommands = {
    QByteArrayList{"captureprefs", "show"},
    QByteArrayList{"captureprefs", "set"},
    QByteArrayList{"captureprefs", "clear"},
    QByteArrayList{"captureprefs", "list"},
    QByteArrayList{"captureprefs", "export"},
    QByteArrayList{"captureprefs", "import"},
    QByteArrayList{"pattern", "check"},
    QByteArrayList{"log", "id"},
};

TEST(Program, HelpsEverywhere)
{
    for (const QByteArrayList& words :
         {QByteArrayList{}, QByteArrayList{"captureprefs"}, QByteArrayList{"pattern"}, QByteArrayList{"log"}}) {
        const RunResult result = run(words + QByteArrayList{"--help"});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.output.contains("Subcommands:")) << result.output.constData();
        EXPECT_EQ(result.errors, "");
    }
    for (const QByteArrayList& words : kSubcommands) {
        const RunResult result = run(words + QByteArrayList{"--help"});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.output.contains("Usage: havrel " + words.join(' '))) << result.output.constData();
        EXPECT_TRUE(result.output.endsWith(".\n") || words.last() == "set") << result.output.constData();
        EXPECT_EQ(result.errors, "");
    }
}

TEST(Program, TellsItsVersion)
{
    const RunResult result = run({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith("havrel 0.")) << result.output.constData();
}

TEST(Program, AnswersWrongUsageWithTwoAndOneLine)
{
    const std::array wrong = {
        QByteArrayList{},
        QByteArrayList{"nonsense"},
        QByteArrayList{"captureprefs"},
        QByteArrayList{"captureprefs", "nonsense"},
        QByteArrayList{"captureprefs", "show"},
        QByteArrayList{"captureprefs", "show", "--nonsense", "x"},
        QByteArrayList{"captureprefs", "show", "-x"},
        QByteArrayList{"captureprefs", "show", "--json=false", "x"},
        QByteArrayList{"captureprefs", "show", "--items-from"},
        QByteArrayList{"captureprefs", "show", "--items-from", "a", "--items-from", "b"},
        QByteArrayList{"captureprefs", "list", "--json", "-0", "x"},
        QByteArrayList{"captureprefs", "import"},
        QByteArrayList{"pattern", "check", "--anchor", "a", "--type", "perl"},
        QByteArrayList{"pattern", "check", "--anchor", "a", "--pattern", "b", "line"},
        QByteArrayList{"log", "id"},
        QByteArrayList{"--nonsense\n\x1b"},
    };
    for (const QByteArrayList& arguments : wrong) {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').constData();
        EXPECT_TRUE(result.errors.startsWith("havrel: ")) << result.errors.constData();
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
        EXPECT_FALSE(result.errors.contains('\x1b'));
        EXPECT_EQ(result.output, "");
    }
}

TEST(Program, TellsWhichCommandItDoesNotKnowAndWhichThereAre)
{
    struct Row
    {
        QByteArrayList arguments;
        const char* reason;
    };
    const Row rows[] = {
        {{"bogus"},
         "\"havrel\" has no command \"bogus\"; it has archive, captureprefs, components, pattern, log, capture, "
         "reveal, integrations"
         " (see 'havrel --help')"},
        {{"bogus", "more"},
         "\"havrel\" has no command \"bogus\"; it has archive, captureprefs, components, pattern, log, capture, "
         "reveal, integrations"
         " (see 'havrel --help')"},
        {{},
         "\"havrel\" needs a command; it has archive, captureprefs, components, pattern, log, capture, reveal, "
         "integrations"
         " (see 'havrel --help')"},
        {{"pattern", "bogus"},
         "\"havrel pattern\" has no command \"bogus\"; it has check (see 'havrel pattern --help')"},
        {{"pattern"}, "\"havrel pattern\" needs a command; it has check (see 'havrel pattern --help')"},
        {{"--", "[x"},
         "\"havrel\" has no command \"[x\"; it has archive, captureprefs, components, pattern, log, capture, reveal, "
         "integrations"
         " (see 'havrel --help')"},
        {{"--bogus"}, "\"havrel\" has no option \"--bogus\" (see 'havrel --help')"},
        {{"log", "-x"}, "\"havrel log\" has no option \"-x\" (see 'havrel log --help')"},
    };
    for (const Row& each : rows)
        EXPECT_EQ(run(each.arguments).errors.toStdString(), std::string("havrel: ") + each.reason + '\n');
}

TEST(Program, TellsWhenItsOutputIsLost)
{
    RunSettings settings;
    settings.outputFile = "/dev/full";
    for (const QByteArrayList& arguments : {QByteArrayList{"log", "id", "6"}, QByteArrayList{"--version"}}) {
        const RunResult result = run(arguments, settings);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "havrel: standard output: No space left on device\n");
    }
}

TEST(Program, ShowsColoursOnATerminalOnly)
{
    const TemporaryTree tree{"file"};
    const QByteArrayList show{"captureprefs", "show", "file"};
    RunSettings settings{.workingFolder = QByteArray::fromStdString(tree.root())};
    settings.environment = {"TERM=xterm", "NO_COLOR="};
    EXPECT_EQ(run(show, settings).output, "file: normal\n");

    settings.onTerminal = true;
    EXPECT_EQ(run(show, settings).output, "\x1b[1mfile\x1b[0m: normal\r\n");
    settings.environment = {"TERM=xterm", "NO_COLOR=1"};
    EXPECT_EQ(run(show, settings).output, "file: normal\r\n");
    settings.environment = {"TERM=dumb", "NO_COLOR="};
    EXPECT_EQ(run(show, settings).output, "file: normal\r\n");
}

TEST(Program, LetsNoNameSteerTheTerminal)
{
    const char* name = "\x1b[31m\nbad\xff";
    const TemporaryTree tree{name};
    RunSettings settings{.workingFolder = QByteArray::fromStdString(tree.root())};
    settings.onTerminal = true;
    settings.environment = {"NO_COLOR=1"};

    EXPECT_EQ(run({"captureprefs", "show", name, "missing\x1b"}, settings).output,
              "\\x1b[31m\\nbad\\xff: normal\r\nhavrel: missing\\x1b: No such file or directory\r\n");
}

} // namespace
} // namespace havrel::tests
