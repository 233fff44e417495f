// SPDX-License-Identifier: MIT
// Finding preferences below folders, and carrying them past what loses them.
#include "cli/json_input.h"
#include "platform/file_names.h"
#include "tests/cli/captureprefs_fixture.h"
#include "tests/support/mounted_folder.h"

#include <array>

namespace havrel::tests {
namespace {

class CaptureprefsCarrying : public Captureprefs
{
protected:
    [[nodiscard]] RunResult exported(const QByteArray& folder) const
    {
        return run({"captureprefs", "export", folder}, m_here);
    }
    [[nodiscard]] RunResult imported(const QByteArray& json, const QByteArrayList& options = {}) const
    {
        RunSettings settings = m_here;
        settings.input = json;
        return run(QByteArrayList{"captureprefs", "import"} + options + QByteArrayList{"-"}, settings);
    }
    void expectMessage(const RunResult& result, const QByteArray& message) const
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, message);
    }
};

TEST_F(CaptureprefsCarrying, ListsTheFolderItselfAndAllThatCarriesPreferencesBelow)
{
    m_tree.add("a/deep/z");
    m_tree.add("a/deep/b");
    m_tree.add("c/plain");
    for (const char* item : {".", "file", "a/deep/z", "a/deep/b", "a/deep"})
        set({"--exclude"}, item);
    const RunResult result = run({"captureprefs", "list", "."}, m_here);

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              ".: excluded\n./file: excluded\n./a/deep: excluded\n./a/deep/b: excluded\n./a/deep/z: excluded\n");
    EXPECT_EQ(run({"captureprefs", "list", "file", "c"}, m_here).output, "file: excluded\n");
}

TEST_F(CaptureprefsCarrying, ListsNamesThatTheNextCommandTakes)
{
    for (const char* item : {"new\nline", " ", "--dash", "bad\xff"}) {
        m_tree.add(item);
        set({"--exclude"}, item);
    }
    RunSettings next = m_here;
    next.input = run({"captureprefs", "list", "-0", "."}, m_here).output;
    EXPECT_EQ(next.input.count('\0'), 4);

    EXPECT_EQ(run({"captureprefs", "clear", "--items-from", "-"}, next).status, 0);
    EXPECT_EQ(run({"captureprefs", "list", "."}, m_here).output, "");
}

TEST_F(CaptureprefsCarrying, TellsOfAFolderThatIsMissing)
{
    expectMessage(run({"captureprefs", "list", "missing", "."}, m_here),
                  "havrel: missing: No such file or directory\n");
}

TEST_F(CaptureprefsCarrying, StaysInOneFileSystemUnlessToldToCross)
{
    const MountedFolder mounted("tmpfs", m_tree.bytes("folder"), "size=1M");
    HAVREL_NEEDS_MOUNTED(mounted);
    m_tree.add("folder/inside");
    if (platform::writeAttribute(m_tree.bytes("folder/inside"), kName, "bplist00") != 0)
        GTEST_SKIP() << "this kernel's tmpfs keeps no attributes of users";
    set({"--exclude", "--force"}, "folder/inside");
    set({"--exclude"}, "folder");
    set({"--exclude"}, "file");

    EXPECT_EQ(run({"captureprefs", "list", "."}, m_here).output, "./file: excluded\n");
    EXPECT_EQ(run({"captureprefs", "list", "--cross", "."}, m_here).output,
              "./file: excluded\n./folder: excluded\n./folder/inside: excluded\n");
    EXPECT_EQ(run({"captureprefs", "export", "."}, m_here).output.count('\n'), 1);
    EXPECT_EQ(run({"captureprefs", "export", "--cross", "."}, m_here).output.count('\n'), 3);
}

TEST_F(CaptureprefsCarrying, BringsBackTheVeryBytesThatItTookAway)
{
    const std::array values = {
        "{'capture': 'exclude'}",
        "{'big': 2**64 - 1, 'small': -2**63, 'odd': 2**53 + 1, 'real': 1.0, 'tiny': 5e-324}",
        "{'data': b'\\0\\xff', 'when': datetime.datetime(2025, 7, 30, 12, 0), 'none': [], 'map': {'$data': 'x'}}",
        "{'pad': b'x' * 3000}",
        "{'\\U0001f600': '\\u00e9\\n\\x7f'}",
        "['no dictionary']",
    };
    for (const char* value : values) {
        putFromPython("file", value);
        const QByteArray before = attributeOf("file").bytes;
        const RunResult json = exported(".");
        EXPECT_EQ(json.status, 0) << json.errors.constData();
        clear("file");
        EXPECT_EQ(imported(json.output, {"--force"}).errors, "") << value;
        EXPECT_EQ(attributeOf("file").bytes, before) << value;
    }
}

TEST_F(CaptureprefsCarrying, BringsBackWhatIsNoPropertyListToo)
{
    for (const QByteArray& bytes : {QByteArray(), QByteArray("bplist00"), QByteArray("\xff\0\n", 3)}) {
        put("file", bytes);
        const QByteArray json = exported("file").output;
        EXPECT_TRUE(json.contains("\"preferences\":null,\"attribute\":\"")) << json.constData();
        clear("file");
        EXPECT_EQ(imported(json).errors, "");
        EXPECT_EQ(attributeOf("file").error, 0);
        EXPECT_EQ(attributeOf("file").bytes, bytes);
    }
}

TEST_F(CaptureprefsCarrying, BringsBackPreferencesAfterAnEditorThatSavesByRenaming)
{
    set({"--ignore", "--between", "22:00-06:00"}, "file");
    const QByteArray json = exported(".").output;
    m_tree.add("new");
    std::filesystem::rename(m_tree.path("new"), m_tree.path("file"));
    EXPECT_EQ(wordsOf("file"), "normal");

    EXPECT_EQ(imported(json).status, 0);
    EXPECT_EQ(wordsOf("file"), "ignore changes between 22:00 and 06:00");
}

TEST_F(CaptureprefsCarrying, TakesWhatWasShown)
{
    set({"--exclude"}, "file");
    const QByteArray json = run({"captureprefs", "show", "--json", "file"}, m_here).output;
    clear("file");

    EXPECT_EQ(imported(json).status, 0);
    EXPECT_EQ(wordsOf("file"), "excluded");
}

TEST_F(CaptureprefsCarrying, LeavesItemsAloneThatWereShownWithout)
{
    set({"--exclude"}, "folder");
    const QByteArray json = run({"captureprefs", "show", "--json", "file", "folder"}, m_here).output;
    set({"--scrape", "--immediately"}, "file");
    clear("folder");

    EXPECT_TRUE(json.contains("\"preferences\":null")) << json.constData();
    const RunResult result = imported(json);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(wordsOf("file"), "scrape");
    EXPECT_EQ(wordsOf("folder"), "excluded");
}

TEST_F(CaptureprefsCarrying, RefusesNonsenseByItsLineAndDoesTheRest)
{
    m_tree.write("saved",
                 "{\"path\":\"file\",\"preferences\":{\"capture\":\"exclude\"}}\n"
                 "\n"
                 "{\"path\":\"file\",\n"
                 "nonsense\n"
                 "{\"path\":\"missing\",\"preferences\":{}}\n"
                 "{\"path\":\"folder\",\"preferences\":{\"capture\":\"scrape\"}}");
    const RunResult result = run({"captureprefs", "import", "saved", "gone"}, m_here);

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "havrel: saved:3: not JSON: a key in quotes is expected (byte 16)\n"
              "havrel: saved:4: not JSON: a value is expected (byte 1)\n"
              "havrel: missing: No such file or directory\n"
              "havrel: gone: No such file or directory\n");
    EXPECT_EQ(wordsOf("file"), "excluded");
    EXPECT_EQ(wordsOf("folder"), "scrape");
}

TEST_F(CaptureprefsCarrying, RefusesARecordThatNobodyCouldReadUnlessForced)
{
    const QByteArray json =
        "{\"path\":\"file\",\"preferences\":{\"pad\":{\"$data\":\"" + QByteArray(2000, 'x').toBase64() + "\"}}}\n";
    EXPECT_EQ(imported(json).status, 1);
    EXPECT_EQ(attributeOf("file").error, ENODATA);
    EXPECT_EQ(imported(json, {"--force"}).status, 0);
    EXPECT_GT(attributeOf("file").bytes.size(), 1024);
}

TEST_F(CaptureprefsCarrying, DoesNotFollowALinkThatTookTheItemsPlace)
{
    set({"--exclude"}, "folder");
    const QByteArray json = exported("folder").output.replace("\"folder\"", "\"link/\"");
    clear("folder");
    m_tree.addLink("link", "folder");

    expectMessage(imported(json), "havrel: link: a symbolic link cannot carry preferences; its target can: folder\n");
    EXPECT_EQ(attributeOf("folder").error, ENODATA);
}

TEST_F(CaptureprefsCarrying, SaysWhatAFileSystemMeans)
{
    const QByteArray folder = m_tree.bytes("folder");
    {
        const MountedFolder mounted("ramfs", folder, "");
        HAVREL_NEEDS_MOUNTED(mounted);
        expectMessage(run({"captureprefs", "set", "--exclude", "folder"}, m_here),
                      "havrel: folder: its file system keeps no attributes, so nothing on it can carry preferences\n");
        EXPECT_EQ(wordsOf("folder"), "normal");
        clear("folder");
    }
    {
        set({"--exclude"}, "folder");
        const MountedFolder mounted = MountedFolder::readOnly(folder);
        HAVREL_NEEDS_MOUNTED(mounted);
        expectMessage(run({"captureprefs", "set", "--scrape", "folder"}, m_here),
                      "havrel: folder: it is on a read-only file system\n");
        expectMessage(run({"captureprefs", "clear", "folder"}, m_here),
                      "havrel: folder: it is on a read-only file system\n");
        EXPECT_EQ(wordsOf("folder"), "excluded");
    }
}

TEST_F(CaptureprefsCarrying, TellsAnItemWithoutRoomFromAFullFileSystem)
{
    const QByteArray image = m_tree.bytes("image");
    m_tree.add("image");
    std::filesystem::resize_file(m_tree.path("image"), 4 << 20);
    const QStringList make{QStringLiteral("-q"),
                           QStringLiteral("-F"),
                           QStringLiteral("-m0"), // nothing kept back for root
                           QStringLiteral("-b"),
                           QStringLiteral("1024"),
                           QStringLiteral("-I"),
                           QStringLiteral("128"),
                           QString::fromUtf8(image)};
    if (QProcess::execute(QStringLiteral("/sbin/mkfs.ext4"), make) != 0)
        GTEST_SKIP() << "mkfs.ext4 is not installed";
    const MountedFolder mounted(image, m_tree.bytes("folder"));
    HAVREL_NEEDS_MOUNTED(mounted);
    m_tree.add("folder/inside");
    QByteArrayList options{"captureprefs", "set", "--exclude", "folder/inside"};
    for (int i = 0; i < 42; ++i)
        options << "--add-pattern"
                << "//" + QByteArray::number(i).rightJustified(14, 'x');

    expectMessage(run(options, m_here),
                  "havrel: folder/inside: no room left for attributes on this item (its file system is not full)\n");
    EXPECT_EQ(attributeOf("folder/inside").error, ENODATA);

    std::ofstream filler(m_tree.path("folder/filler"), std::ios::binary);
    while (filler << std::string(1024, 'x') << std::flush) {
    }
    expectMessage(run({"captureprefs", "set", "--exclude", "folder/inside"}, m_here),
                  "havrel: folder/inside: no space left on its file system\n");
}

/// Names as people and file managers give them.
const QByteArrayList kHardNames = {"a dir",
                                   "--dash.txt",
                                   "bad\xff.txt",
                                   "dollar$HOME.txt",
                                   "new\nline.txt",
                                   "per%cent.txt",
                                   "plain.txt",
                                   "quo'te\".txt",
                                   "sp ace.txt"};

TEST_F(CaptureprefsCarrying, TakesTenHardNames)
{
    m_tree.add("a dir/");
    for (const QByteArray& name : kHardNames.mid(1))
        m_tree.add(name.toStdString());
    m_tree.addLink("link", "plain.txt");
    const RunResult result =
        run(QByteArrayList{"captureprefs", "set", "--exclude", "--"} + kHardNames + QByteArrayList{"link"}, m_here);
    expectMessage(result, "havrel: link: a symbolic link cannot carry preferences; its target can: plain.txt\n");

    RunSettings again = m_here;
    for (const QByteArray& name : kHardNames)
        again.input += "file://" + m_tree.bytes(name.toStdString()).toPercentEncoding("/") + '\0';
    const RunResult shown = run({"captureprefs", "show", "--json", "--items-from", "-"}, again);
    EXPECT_EQ(shown.errors, "");
    const QByteArrayList lines = shown.output.split('\n');
    ASSERT_EQ(lines.size(), kHardNames.size() + 1);
    for (qsizetype i = 0; i < kHardNames.size(); ++i) {
        const QVariantMap line = cli::readJson(lines[i]).value.toMap();
        EXPECT_EQ(platform::bytesOfFileName(line.value(QStringLiteral("path")).toString()),
                  m_tree.bytes(kHardNames[i].toStdString()));
        EXPECT_EQ(line.value(QStringLiteral("description")).toString(), QStringLiteral("excluded"));
    }

    const QByteArray json = exported(".").output;
    EXPECT_EQ(run(QByteArrayList{"captureprefs", "clear", "--"} + kHardNames, m_here).status, 0);
    EXPECT_EQ(exported(".").output, "");
    EXPECT_EQ(imported(json).errors, "");
    EXPECT_EQ(exported(".").output, json);
}

TEST_F(CaptureprefsCarrying, TakesNamesThatLookLikeArguments)
{
    const QByteArrayList names = {
        "[a,b]", "{}", "%%", "++", "list", "set", "\x1f", "-", "-x", "--json", "captureprefs"};
    for (const QByteArray& name : names)
        m_tree.add(name.toStdString());
    const RunResult result = run(QByteArrayList{"captureprefs", "set", "--exclude", "--"} + names, m_here);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(run({"captureprefs", "list", "-0", "."}, m_here).output.count('\0'), names.size());

    const QByteArrayList plain = {"[a,b]", "{}", "%%", "++", "list", "set", "\x1f", "-", "captureprefs"};
    EXPECT_EQ(run(QByteArrayList{"captureprefs", "show"} + plain, m_here).output.count(": excluded\n"), plain.size());
}

TEST_F(CaptureprefsCarrying, TellsOfItemsThatAreNone)
{
    RunSettings settings = m_here;
    settings.input = QByteArray("file\0\0file:///%zz", 17);
    const RunResult result = run({"captureprefs", "show", "file://server/x", "--items-from", "-"}, settings);

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "file: normal\n");
    EXPECT_EQ(result.errors,
              "havrel: file://server/x: this URI names an item on another computer\n"
              "havrel: \"\": an empty name names no item\n"
              "havrel: file:///%zz: this URI has a % without two hexadecimal digits\n");
}

} // namespace
} // namespace havrel::tests
