// SPDX-License-Identifier: MIT
#include "platform/program_lines.h"

#include "platform/programs.h"
#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

namespace havrel::platform {
namespace {

struct Lines
{
    QByteArrayList output, errors;
    ProgramEnd end;
};

Lines linesOf(const QByteArray& script, const QByteArray& input = {}, std::optional<QByteArrayList> environment = {})
{
    Lines lines;
    lines.end = runForLines({.program = programOfName("sh"),
                             .arguments = {"-c", script},
                             .input = input,
                             .environment = std::move(environment)},
                            [&lines](OutputStream stream, const QByteArray& line) {
                                (stream == OutputStream::Output ? lines.output : lines.errors).append(line);
                                return Proceed::Yes;
                            });
    return lines;
}

TEST(ProgramLines, ComeFromBothStreamsInTheirOrderWithTheStatus)
{
    const Lines lines = linesOf("echo one; echo two >&2; printf 'three\\n\\nlast'; exit 3");

    EXPECT_EQ(lines.output, QByteArrayList({"one", "three", "", "last"}));
    EXPECT_EQ(lines.errors, QByteArrayList{"two"});
    EXPECT_EQ(lines.end.errnoValue, 0);
    EXPECT_EQ(lines.end.status, 3);
}

TEST(ProgramLines, AreNoneOfAProgramThatSaysNothing)
{
    const Lines lines = linesOf("exit 0");

    EXPECT_TRUE(lines.output.isEmpty() && lines.errors.isEmpty());
    EXPECT_EQ(lines.end.status, 0);
}

TEST(ProgramLines, OfAnyLengthComeWholeWhileTheOtherStreamIsFullToo)
{
    const Lines lines = linesOf("head -c 300000 /dev/zero | tr '\\0' e >&2; head -c 300000 /dev/zero | tr '\\0' o");

    EXPECT_EQ(lines.output, QByteArrayList{QByteArray(300000, 'o')});
    EXPECT_EQ(lines.errors, QByteArrayList{QByteArray(300000, 'e')});
}

TEST(ProgramLines, AnswerWhatTheInputHolds)
{
    const QByteArray input = QByteArray("a\0b\n", 4) + QByteArray(200000, 'x') + '\n';

    EXPECT_EQ(linesOf("cat", input).output, QByteArrayList({QByteArray("a\0b", 3), QByteArray(200000, 'x')}));
    EXPECT_TRUE(linesOf("cat").output.isEmpty());
}

TEST(ProgramLines, KnowOnlyTheEnvironmentThatIsGiven)
{
    const tests::EnvironmentValue ours("HAVREL_TEST_WORD", "ours");

    EXPECT_EQ(linesOf("echo $HAVREL_TEST_WORD").output, QByteArrayList{"ours"});
    EXPECT_EQ(linesOf("echo $HAVREL_TEST_WORD$OTHER", {}, QByteArrayList{"OTHER=theirs"}).output,
              QByteArrayList{"theirs"});
}

TEST(ProgramLines, EndWhenTheCallerWantsNoMore)
{
    int count = 0;
    const ProgramEnd end =
        runForLines({.program = programOfName("sh"), .arguments = {"-c", "while :; do echo on; done"}},
                    [&count](OutputStream, const QByteArray&) { return ++count < 3 ? Proceed::Yes : Proceed::No; });

    EXPECT_GE(count, 3);
    EXPECT_EQ(end.status, 128 + SIGINT);
}

TEST(ProgramLines, EndWhenTheCallerWantsNoMoreOfAProgramThatSaysNothing)
{
    int pulses = 0;
    const ProgramEnd end = runForLines({.program = programOfName("sleep"),
                                        .arguments = {"600"},
                                        .pulse = [&pulses] { return ++pulses < 2 ? Proceed::Yes : Proceed::No; }},
                                       [](OutputStream, const QByteArray&) { return Proceed::Yes; });

    EXPECT_EQ(pulses, 2);
    EXPECT_EQ(end.status, 128 + SIGINT);
}

TEST(ProgramLines, EndAtLastWhenTheProgramHeedsNoInterruption)
{
    QByteArrayList lines;
    const ProgramEnd end = runForLines({.program = programOfName("sh"),
                                        .arguments = {"-c", "trap '' INT; echo ready; exec sleep 600"},
                                        .patience = std::chrono::milliseconds(300)},
                                       [&lines](OutputStream, const QByteArray& line) {
                                           lines.append(line);
                                           return Proceed::No;
                                       });

    EXPECT_EQ(lines.value(0), "ready");
    EXPECT_EQ(end.status, 128 + SIGKILL);
}

TEST(ProgramLines, ArePreventedByAProgramThatIsNotThere)
{
    const TemporaryTree tree;
    const ProgramEnd end =
        runForLines({.program = tree.bytes("none")}, [](OutputStream, const QByteArray&) { return Proceed::Yes; });

    EXPECT_EQ(end.errnoValue, ENOENT);
    EXPECT_EQ(end.status, -1);
}

} // namespace
} // namespace havrel::platform
