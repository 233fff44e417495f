// SPDX-License-Identifier: MIT
#include "filters/capture_preferences_attribute.h"

#include "diagnostics/exception.h"
#include "filters/file_capture_preferences.h"
#include "filters/pattern_filter_def.h"
#include "fs/path.h"
#include "tests/support/attribute_folder.h"
#include "tests/support/forked_child.h"
#include "tests/support/outside_program.h"
#include "tests/support/recording_logr.h"

#include <gtest/gtest.h>

#include <functional>

#include <sys/stat.h>
#include <unistd.h>

namespace havrel {
namespace {

namespace attribute = capture_preferences_attribute;

/// Items with the attribute "com.havrel.prefs", and a log to look at.
class CapturePreferencesAttribute : public tests::WithAttributes
{
protected:
    [[nodiscard]] JNPathPtr item(const char* name) const { return JNPath::withCPath(m_tree.bytes(name)); }

    void put(const char* name, const QByteArray& bytes) const
    {
        ASSERT_EQ(platform::writeAttribute(m_tree.bytes(name), attribute::kNameOnDisk, bytes), 0);
    }
    [[nodiscard]] platform::AttributeValue bytesOf(const char* name) const
    {
        return platform::readAttribute(m_tree.bytes(name), attribute::kNameOnDisk);
    }
    [[nodiscard]] std::optional<FileCapturePreferences> read(const char* name) const
    {
        return FileCapturePreferences::capturePreferencesForPath(*item(name));
    }

    const std::shared_ptr<tests::RecordingLogr> m_log = std::make_shared<tests::RecordingLogr>();
    const tests::SharedLoggerScope m_logScope{m_log};
};

FileCapturePreferences excluding()
{
    FileCapturePreferences preferences;
    preferences.option = CaptureOption::Exclude;
    return preferences;
}

/// Preferences that exclude the item and \p count different patterns of \p length characters each.
FileCapturePreferences withPatterns(int count, int length)
{
    FileCapturePreferences preferences = excluding();
    PatternFilterDefs definitions;
    for (int i = 0; i < count; ++i) {
        const QString line = QStringLiteral("//%1").arg(i, length - 2, 10, QLatin1Char('x'));
        definitions.append(std::make_shared<PatternFilterDef>(line));
    }
    preferences.setExcludeFilterDefs(definitions);
    return preferences;
}

/// What \p act raises; fails the test when it raises nothing.
std::optional<HVException> raisedBy(const std::function<void()>& act)
{
    try {
        act();
    } catch (const HVException& exception) {
        return exception;
    }
    ADD_FAILURE() << "nothing was raised";
    return std::nullopt;
}

void expectFailure(const JNPathPtr& path, const FileCapturePreferences& preferences, int error, const char* reason)
{
    const auto raised = raisedBy([&] { preferences.setPreferencesAtPath(*path); });
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->name(), QStringLiteral("IO"));
    EXPECT_EQ(raised->reason(), QString::fromLatin1(reason));
    EXPECT_EQ(raised->detail(QString(detail_key::kPOSIXErr)).toInt(), error);
    EXPECT_EQ(raised->detail(QString(detail_key::kPath)).toString(), path->path());
}

TEST_F(CapturePreferencesAttribute, IsWrittenAsOtherProgramsReadIt)
{
    FileCapturePreferences preferences = excluding();
    preferences.option = CaptureOption::ExcludeContents;
    preferences.setExcludeFilterDefs(PatternFilterDefs{std::make_shared<PatternFilterDef>(QStringLiteral("//*.tmp"))});
    preferences.setPreferencesAtPath(*item("folder"));

    const QByteArray bytes = outputOfProgram(QStringLiteral("getfattr"),
                                             {QStringLiteral("--only-values"),
                                              QStringLiteral("-n"),
                                              QStringLiteral("user.com.havrel.prefs"),
                                              item("folder")->path()},
                                             {});
    EXPECT_EQ(bytes, bytesOf("folder").bytes);
    EXPECT_EQ(outputOfPython("import plistlib, sys; print(plistlib.loads(sys.stdin.buffer.read()))", bytes),
              "{'capture': 'exclude', 'contents': True, 'patterns': ['//*.tmp']}\n");
}

TEST_F(CapturePreferencesAttribute, IsReadAsOtherProgramsWriteIt)
{
    put("file",
        outputOfPython("import plistlib, sys\n"
                       "sys.stdout.buffer.write(plistlib.dumps({'capture': 'ignore', 'duration': 2, 'scale': 3, "
                       "'from': 60, 'to': 90, 'x': b''},"
                       " fmt=plistlib.FMT_BINARY))"));
    const auto preferences = read("file");

    ASSERT_TRUE(preferences);
    EXPECT_EQ(preferences->localizedDescription(),
              QStringLiteral("ignore changes for 2 weeks after last capture and between 01:00 and 01:30"));
}

TEST_F(CapturePreferencesAttribute, MayBeXML)
{
    put("file", "<plist version=\"1.0\"><dict><key>capture</key><string>scrape</string></dict></plist>");

    ASSERT_TRUE(read("file"));
    EXPECT_EQ(read("file")->option, CaptureOption::Scrape);
}

TEST_F(CapturePreferencesAttribute, ThatIsMissingGivesNoPreferencesAndNoMessage)
{
    EXPECT_FALSE(read("file"));
    EXPECT_FALSE(read("missing"));
    EXPECT_TRUE(m_log->lines().isEmpty());
}

TEST_F(CapturePreferencesAttribute, IsReadUpTo1024BytesAndNotOneMore)
{
    // A record padded with a key that nobody knows.
    const auto padded = [](qsizetype size) {
        QByteArray record = outputOfPython("import plistlib, sys\n"
                                           "size = int(sys.stdin.read())\n"
                                           "for n in range(size):\n"
                                           "    record = plistlib.dumps({'capture': 'exclude', 'pad': b'x' * n},"
                                           " fmt=plistlib.FMT_BINARY)\n"
                                           "    if len(record) == size: break\n"
                                           "sys.stdout.buffer.write(record)",
                                           QByteArray::number(size));
        EXPECT_EQ(record.size(), size);
        return record;
    };
    put("file", padded(1024));
    EXPECT_TRUE(read("file"));
    put("file", padded(1025));
    EXPECT_FALSE(read("file"));
    EXPECT_TRUE(m_log->lines().isEmpty());
}

struct MalformedRow
{
    const char* label;
    QByteArray bytes;
};

TEST_F(CapturePreferencesAttribute, ThatIsMalformedGivesNoPreferencesAndIsLogged)
{
    const std::array rows = {
        MalformedRow{"empty", QByteArray()},
        MalformedRow{"garbage", QByteArray("\0\1\2", 3)},
        MalformedRow{"cut", QByteArray("bplist00")},
        MalformedRow{"a list", "<plist version=\"1.0\"><array/></plist>"},
        MalformedRow{"a text", "<plist version=\"1.0\"><string>exclude</string></plist>"},
    };
    for (const MalformedRow& row : rows) {
        put("file", row.bytes);
        m_log->clear();
        EXPECT_FALSE(read("file")) << row.label;
        const QStringList lines = m_log->lines();
        ASSERT_EQ(lines.size(), 1) << row.label;
        EXPECT_TRUE(lines.first().contains(
            QStringLiteral("#debug# +[FileCapturePreferences capturePreferencesForPath:] malformed com.havrel.prefs "
                           "attribute in %1: ")
                .arg(item("file")->path())))
            << lines.first().toStdString();
    }
}

TEST_F(CapturePreferencesAttribute, IsReplacedByEachWriting)
{
    excluding().setPreferencesAtPath(*item("file"));
    withPatterns(1, 10).setPreferencesAtPath(*item("file"));

    EXPECT_EQ(read("file")->excludeFiltersAsStrings(), QStringList(QStringLiteral("//xxxxxxx0")));
}

TEST_F(CapturePreferencesAttribute, IsRemovedWhenThereIsNothingToStore)
{
    excluding().setPreferencesAtPath(*item("file"));
    FileCapturePreferences().setPreferencesAtPath(*item("file"));
    EXPECT_EQ(bytesOf("file").error, ENODATA);

    FileCapturePreferences().setPreferencesAtPath(*item("file"));
    FileCapturePreferences().setPreferencesAtPath(*item("missing"));
    EXPECT_TRUE(m_log->lines().isEmpty());
}

TEST_F(CapturePreferencesAttribute, IsRemovedWhateverItsLength)
{
    put("file", QByteArray(2000, 'x'));
    FileCapturePreferences().setPreferencesAtPath(*item("file"));

    EXPECT_EQ(bytesOf("file").error, ENODATA);
}

TEST_F(CapturePreferencesAttribute, StaysWhenItIsEmptyAndThereIsNothingToStore)
{
    put("file", QByteArray());
    FileCapturePreferences().setPreferencesAtPath(*item("file"));

    EXPECT_EQ(bytesOf("file").error, 0);
}

TEST_F(CapturePreferencesAttribute, HoldsFortyTwoShortOrTwentyLongPatterns)
{
    for (const auto& [most, length] : {std::pair(42, 16), std::pair(20, 40)}) {
        withPatterns(most, length).setPreferencesAtPath(*item("file"));
        EXPECT_TRUE(read("file")) << most;
        EXPECT_TRUE(m_log->lines().isEmpty()) << most;
    }
}

TEST_F(CapturePreferencesAttribute, ThatNobodyCanReadBackIsWrittenAndSaidSo)
{
    const FileCapturePreferences preferences = withPatterns(43, 16);
    preferences.setPreferencesAtPath(*item("file"));

    EXPECT_GT(bytesOf("file").bytes.size(), 1024);
    EXPECT_FALSE(read("file"));
    const QStringList lines = m_log->lines();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines.first().contains(QStringLiteral(" Caution "))) << lines.first().toStdString();
    EXPECT_TRUE(lines.first().contains(item("file")->path())) << lines.first().toStdString();
}

TEST_F(CapturePreferencesAttribute, OfALinkIsNoneAndCannotBeSet)
{
    excluding().setPreferencesAtPath(*item("file"));
    m_tree.addLink("link", "file");

    EXPECT_FALSE(read("link"));
    expectFailure(item("link"), FileCapturePreferences(withPatterns(1, 5)), EPERM, "Cannot set capture preferences");
    FileCapturePreferences().setPreferencesAtPath(*item("link"));
    EXPECT_TRUE(read("file")) << "the target is as it was";
}

TEST_F(CapturePreferencesAttribute, OfAnItemThatVanishedCannotBeSet)
{
    expectFailure(item("missing"), excluding(), ENOENT, "Cannot set capture preferences");
}

TEST_F(CapturePreferencesAttribute, IsKeptFromUsersWithoutPermission)
{
    excluding().setPreferencesAtPath(*item("file"));
    ::chmod(m_tree.bytes("file").constData(), 0444);
    ::chmod(m_tree.root().c_str(), 0755);
    const int result = resultInForkedChild([&] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            return 2;
        expectFailure(item("file"), withPatterns(1, 5), EACCES, "Cannot set capture preferences");
        expectFailure(item("file"), FileCapturePreferences(), EACCES, "Cannot clear capture preferences");
        return ::testing::Test::HasFailure() ? 1 : 0;
    });

    EXPECT_EQ(result, 0);
    EXPECT_TRUE(read("file"));
}

TEST_F(CapturePreferencesAttribute, KeepsNamesThatAreNoText)
{
    m_tree.add("bad\xff");
    excluding().setPreferencesAtPath(*item("bad\xff"));

    EXPECT_TRUE(read("bad\xff"));
}

TEST(CapturePreferencesAttributeKeys, AreTheEightOfTheRecord)
{
    for (const char* known : {"capture", "all", "contents", "duration", "scale", "from", "to", "patterns"})
        EXPECT_TRUE(attribute::isKnownKey(QString::fromLatin1(known))) << known;
    EXPECT_FALSE(attribute::isKnownKey(QStringLiteral("Capture")));
    EXPECT_FALSE(attribute::isKnownKey(QString()));
}

TEST(CapturePreferencesAttributeErrors, AreMissingWhereAFileSystemKeepsNone)
{
    using attribute::State;
    EXPECT_EQ(attribute::stateOf(0), State::Readable);
    EXPECT_EQ(attribute::stateOf(ENODATA), State::Missing);
    EXPECT_EQ(attribute::stateOf(ENOTSUP), State::Missing);
    EXPECT_EQ(attribute::stateOf(ERANGE), State::TooLong);
    EXPECT_EQ(attribute::stateOf(EACCES), State::Unreadable);
    EXPECT_EQ(attribute::stateOf(ENOENT), State::Unreadable);
}

} // namespace
} // namespace havrel
