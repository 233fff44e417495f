// SPDX-License-Identifier: MIT
#include "foundation/text_pipe_reader.h"

#include "foundation/dispatch.h"
#include "platform/child_process.h"

#include <QStandardPaths>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <array>
#include <future>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace havrel {
namespace {

/// Gives the chunks one by one, then the end; counts how often it was asked. Copies share what is left.
struct Chunks
{
    explicit Chunks(const QByteArrayList& chunks)
        : left(std::make_shared<QByteArrayList>(chunks))
    {
    }
    QByteArray operator()()
    {
        ++*asked;
        return left->isEmpty() ? QByteArray() : left->takeFirst();
    }

    std::shared_ptr<QByteArrayList> left;
    std::shared_ptr<int> asked = std::make_shared<int>(0);
};

QStringList linesFrom(const QByteArrayList& chunks, Trimming trimming = Trimming::No)
{
    TextPipeReader reader(Chunks{chunks});
    reader.startReadingWithTrimming(trimming);
    return reader.lines();
}

struct LinesCase
{
    const char* label;
    QByteArrayList chunks;
    Trimming trimming;
    QStringList expected;
};

class TextPipeReaderLines : public ::testing::TestWithParam<LinesCase>
{
};

TEST_P(TextPipeReaderLines, AreWhatWasWrittenWithoutBlankLines)
{
    EXPECT_EQ(linesFrom(GetParam().chunks, GetParam().trimming), GetParam().expected);
}

const auto kLinesCases = std::to_array<LinesCase>({
    {"last_without_newline", {"a\nb"}, Trimming::No, {u"a"_qs, u"b"_qs}},
    {"trailing_newline", {"a\nb\n"}, Trimming::No, {u"a"_qs, u"b"_qs}},
    {"nothing", {}, Trimming::No, {}},
    {"only_newlines", {"\n\n\n"}, Trimming::No, {}},
    {"blank_lines", {"a\n\n \n\t \t\nb\n"}, Trimming::No, {u"a"_qs, u"b"_qs}},
    {"carriage_returns", {"a\r\nb\rc\r\n"}, Trimming::No, {u"a"_qs, u"b"_qs, u"c"_qs}},
    {"all_newlines",
     {"a\vb\fc\xC2\x85"
      "d\xE2\x80\xA8"
      "e\xE2\x80\xA9"
      "f"},
     Trimming::No,
     {u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs, u"e"_qs, u"f"_qs}},
    {"kept_as_they_are", {"  a b \t\n"}, Trimming::No, {u"  a b \t"_qs}},
    {"trimmed",
     {"  a b \t\nc\n \xC2\xA0"
      "d\xE2\x80\x83\n \n"},
     Trimming::Yes,
     {u"a b"_qs, u"c"_qs, u"d"_qs}},
    {"wide_blanks_are_blank", {"\xC2\xA0\xE3\x80\x80\nx"}, Trimming::No, {u"x"_qs}},
    {"cut_anywhere", {"a", "b\n", "\xC3", "\xA4\r", "\nc"}, Trimming::No, {u"ab"_qs, u"\u00E4"_qs, u"c"_qs}},
    {"null_character", {QByteArray("a\0b\n", 4)}, Trimming::No, {QString::fromUtf16(u"a\0b", 3)}},
    {"not_utf8", {"a\n\xFF\nb"}, Trimming::No, {}},
});

INSTANTIATE_TEST_SUITE_P(Cases, TextPipeReaderLines, ::testing::ValuesIn(kLinesCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(TextPipeReader, KeepsWholeChunksWhileFewerBytesThanTheLimitWereKept)
{
    Chunks chunks{QByteArrayList(10, QByteArray(64, 'x'))};
    TextPipeReader reader(chunks);
    reader.setLimit(100);
    reader.startReading();

    ASSERT_EQ(reader.lines().size(), 1);
    EXPECT_EQ(reader.lines().first().size(), 128);
    EXPECT_EQ(*chunks.asked, 11) << "later chunks are read and dropped";
    EXPECT_EQ(reader.limit(), 100);
}

TEST(TextPipeReader, DropsTheChunkAfterExactlyTheLimit)
{
    TextPipeReader reader(Chunks{QByteArrayList(3, QByteArray(64, 'x'))});
    reader.setLimit(128);
    reader.startReading();

    EXPECT_EQ(reader.lines().value(0).size(), 128);
}

TEST(TextPipeReader, KeepsAllWithoutALimit)
{
    EXPECT_EQ(linesFrom(QByteArrayList(1000, QByteArray(1000, 'x'))).value(0).size(), 1000000);
}

TEST(TextPipeReader, DecodesInTheGivenEncoding)
{
    TextPipeReader reader(Chunks{{"B\xE4r\n"}});
    reader.setEncoding(TextEncoding::ISOLatin1);
    reader.startReading();

    EXPECT_EQ(reader.lines(), QStringList{u"B\u00E4r"_qs});
    EXPECT_EQ(reader.encoding(), TextEncoding::ISOLatin1);
}

TEST(TextPipeReader, HasNoLinesBeforeItIsStarted)
{
    const TextPipeReader reader;

    EXPECT_EQ(reader.lines(), QStringList());
    EXPECT_EQ(reader.encoding(), TextEncoding::Default);
    EXPECT_EQ(reader.limit(), 0);
}

TEST(TextPipeReader, HasNoLinesButReturnsWhenItsSourceThrows)
{
    TextPipeReader reader([]() -> QByteArray { throw std::runtime_error("no more"); });
    reader.startReading();

    EXPECT_EQ(reader.lines(), QStringList());
}

TEST(TextPipeReader, WaitsForTheEndOfTheText)
{
    std::promise<void> mayEnd;
    TextPipeReader reader([future = mayEnd.get_future().share(), given = false]() mutable {
        if (given)
            future.wait();
        return std::exchange(given, true) ? QByteArray() : QByteArray("a\n");
    });
    reader.startReading();
    const auto lines = std::async(std::launch::async, [&] { return reader.lines(); });

    EXPECT_EQ(lines.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    mayEnd.set_value();
    EXPECT_EQ(reader.lines(), QStringList{u"a"_qs});
}

TEST(TextPipeReader, IsWaitedForOnAPoolThatHasNoThreadLeft)
{
    QThreadPool* const pool = &globalQueuePool();
    pool->waitForDone();
    const int before = pool->maxThreadCount();
    pool->setMaxThreadCount(1);
    std::promise<QStringList> lines;
    onGlobalQueue([&] { lines.set_value(linesFrom({"a\n"})); });

    EXPECT_EQ(lines.get_future().get(), QStringList{u"a"_qs});
    pool->waitForDone();
    pool->setMaxThreadCount(before);
}

TEST(TextPipeReader, ReadsWhatAProgramWrites)
{
    TextPipeReader reader;
    const QByteArray shell = QStandardPaths::findExecutable(QStringLiteral("sh")).toUtf8();
    const auto program = platform::launch(shell, {"-c", "echo one; echo; echo ' two '"}, reader.pipe().writeEnd.get());
    reader.closeWriteEnd();
    reader.startReadingWithTrimming(Trimming::Yes);

    EXPECT_EQ(program.errnoValue, 0);
    EXPECT_EQ(reader.lines(), (QStringList{u"one"_qs, u"two"_qs}));
}

TEST(TextPipeReader, NeverHoldsUpAProgramThatWritesMoreThanTheLimit)
{
    TextPipeReader reader;
    reader.setLimit(10);
    const QByteArray shell = QStandardPaths::findExecutable(QStringLiteral("sh")).toUtf8();
    auto program = platform::launch(
        shell,
        {"-c", "i=0; while [ $i -lt 5000 ]; do echo 0123456789012345678901234567890123456789; i=$((i+1)); done"},
        reader.pipe().writeEnd.get());
    reader.closeWriteEnd();
    reader.startReading();

    EXPECT_EQ(program.child.wait(), 0);
    EXPECT_TRUE(reader.lines().value(0).startsWith(u'0'));
}

TEST(TextPipeReader, MakesOnePipe)
{
    TextPipeReader reader;
    const int writeEnd = reader.pipe().writeEnd.get();

    EXPECT_TRUE(reader.pipe().readEnd.isOpen());
    EXPECT_EQ(reader.pipe().writeEnd.get(), writeEnd);
    reader.closeWriteEnd();
    EXPECT_FALSE(reader.pipe().writeEnd.isOpen());
}

TEST(TextPipeReader, ReadsOnWhenItIsStartedAgain)
{
    TextPipeReader reader(Chunks{{"a\n", "", "b\n"}});
    reader.startReading();
    EXPECT_EQ(reader.lines(), QStringList{u"a"_qs});
    reader.startReading();
    EXPECT_EQ(reader.lines(), QStringList{u"b"_qs});
}

TEST(TextPipeReader, MayGoWhileItIsStillReading)
{
    {
        TextPipeReader reader;
        reader.startReading();
        (void)reader.pipe();
    }
    // The reading saw the end of its pipe, because nobody holds the write end any more.
    EXPECT_TRUE(globalQueuePool().waitForDone(60000));
}

} // namespace
} // namespace havrel
