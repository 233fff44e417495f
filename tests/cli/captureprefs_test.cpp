// SPDX-License-Identifier: MIT
// The program itself, on real items; what it stores is judged by other programs.
#include "tests/cli/captureprefs_fixture.h"
#include "tests/support/outside_program.h"

#include <array>

namespace havrel::tests {
namespace {

TEST_F(Captureprefs, ShowsItemsWithoutPreferencesAsNormal)
{
    const RunResult result = run({"captureprefs", "show", "file", "folder"}, m_here);

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "file: normal\nfolder: normal\n");
    EXPECT_EQ(result.errors, "");
}

TEST_F(Captureprefs, ShowsJSONWithThePathTheStoredDictionaryAndTheWords)
{
    set({"--exclude", "--all-archives"}, "file");
    const RunResult result = run({"captureprefs", "show", "--json", "file", "folder"}, m_here);

    EXPECT_EQ(result.output,
              "{\"path\":\"file\",\"preferences\":{\"all\":true,\"capture\":\"exclude\"},"
              "\"description\":\"excluded from all captures\"}\n"
              "{\"path\":\"folder\",\"preferences\":null,\"description\":\"normal\"}\n");
}

TEST_F(Captureprefs, TellsOfAnItemThatVanishedAndGoesOn)
{
    const RunResult result = run({"captureprefs", "show", "missing", "file"}, m_here);

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "file: normal\n");
    EXPECT_EQ(result.errors, "havrel: missing: No such file or directory\n");
}

struct SetRow
{
    QByteArrayList options;
    const char* stored; // as Python shows it
    const char* words;
};

TEST_F(Captureprefs, StoresWhatPythonReadsFromTheAttribute)
{
    const std::array rows = {
        SetRow{{"--exclude"}, "{'capture': 'exclude'}", "excluded"},
        SetRow{{"--exclude-contents", "--all-archives"},
               "{'all': True, 'capture': 'exclude', 'contents': True}",
               "exclude contents from all captures"},
        SetRow{{"--ignore"},
               "{'capture': 'ignore', 'duration': 23, 'scale': 1}",
               "ignore changes for 23 hours after last capture"},
        SetRow{{"--ignore", "--for", "2 days", "--between", "09:00-17:00"},
               "{'capture': 'ignore', 'duration': 2, 'from': 540, 'scale': 2, 'to': 1020}",
               "ignore changes for 2 days after last capture and between 09:00 and 17:00"},
        SetRow{{"--scrape", "--after", "31 days"},
               "{'capture': 'scrape', 'duration': 31, 'scale': 2}",
               "scrape 31 days after being captured"},
        SetRow{{"--scrape-contents", "--immediately"}, "{'capture': 'scrape', 'contents': True}", "scrape contents"},
        SetRow{{"--normal", "--pattern", "//*.tmp", "--pattern=Library//Caches"},
               "{'patterns': ['//*.tmp', 'Library//Caches']}",
               "normal, excluding //*.tmp, Library//Caches"},
        SetRow{{"--exclude-contents", "--pattern", "Users/work//*.tmp/0:glob"},
               "{'capture': 'exclude', 'contents': True, 'patterns': ['Users/work//*.tmp']}",
               "exclude contents, excluding Users/work//*.tmp"},
    };
    for (const SetRow& row : rows) {
        clear("folder");
        set(row.options, "folder");
        EXPECT_EQ(storedAsPythonReadsIt("folder"), row.stored);
        EXPECT_EQ(wordsOf("folder"), row.words);
    }
}

TEST_F(Captureprefs, KeepsWhatIsNotNamed)
{
    set({"--exclude-contents", "--all-archives", "--pattern", "//a"}, "folder");
    set({"--add-pattern", "//b", "--add-pattern", "//a"}, "folder");
    EXPECT_EQ(wordsOf("folder"), "exclude contents from all captures, excluding //a, //b");
    set({"--remove-pattern", "//a/0"}, "folder");
    EXPECT_EQ(wordsOf("folder"), "exclude contents from all captures, excluding //b");
    set({"--exclude", "--no-all-archives"}, "folder");
    EXPECT_EQ(wordsOf("folder"), "excluded, excluding //b");
    set({"--no-patterns"}, "folder");
    EXPECT_EQ(wordsOf("folder"), "excluded");
}

TEST_F(Captureprefs, TreatsTheContentsOfFoldersOnly)
{
    m_tree.add("Tool.app/");
    for (const char* option : {"--exclude-contents", "--scrape-contents"}) {
        for (const char* item : {"file", "Tool.app"}) {
            const RunResult result = run({"captureprefs", "set", option, item}, m_here);
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.errors,
                      "havrel: " + QByteArray(item) +
                          ": only folders have contents to treat; --exclude and --scrape are for the item itself\n");
            EXPECT_EQ(attributeOf(item).error, ENODATA);
        }
        EXPECT_EQ(run({"captureprefs", "set", option, "folder"}, m_here).status, 0);
    }
    m_tree.addLink("link", "folder");
    EXPECT_TRUE(run({"captureprefs", "set", "--exclude-contents", "link"}, m_here).errors.contains("symbolic link"));
}

TEST_F(Captureprefs, TakesTheAttributeAwayWhenNothingIsLeftToSay)
{
    set({"--exclude"}, "file");
    set({"--normal"}, "file");

    EXPECT_EQ(attributeOf("file").error, ENODATA);
}

TEST_F(Captureprefs, KeepsWhatOtherProgramsStored)
{
    putFromPython("file", "{'capture': 'exclude', 'future': {'when': [1, 2]}}");
    set({"--ignore", "--for", "1 week"}, "file");

    EXPECT_EQ(storedAsPythonReadsIt("file"),
              "{'capture': 'ignore', 'duration': 1, 'future': {'when': [1, 2]}, 'scale': 3}");
}

struct KeptRow
{
    const char* before; // as Python writes it
    QByteArrayList options;
    const char* after; // as Python shows it; null: refused
};

TEST_F(Captureprefs, KeepsWhatANewerProgramStoredUnlessItIsNamed)
{
    const std::array rows = {
        KeptRow{"{'capture': 'freeze', 'until': 5}",
                {"--add-pattern", "//x"},
                "{'capture': 'freeze', 'patterns': ['//x'], 'until': 5}"},
        KeptRow{"{'capture': 'freeze', 'contents': True, 'duration': 7, 'patterns': ['//a']}",
                {"--no-patterns"},
                "{'capture': 'freeze', 'contents': True, 'duration': 7}"},
        KeptRow{"{'capture': ['freeze']}", {"--pattern", "//x"}, "{'capture': ['freeze'], 'patterns': ['//x']}"},
        KeptRow{"{'capture': 'freeze', 'duration': 7}", {"--exclude"}, "{'capture': 'exclude'}"},
        KeptRow{"{'capture': 'freeze', 'contents': True}", {"--all-archives"}, nullptr},
        KeptRow{"{'capture': 'freeze'}", {"--for", "2 days"}, nullptr},
        KeptRow{"{'patterns': ['//a/', '//b/0:glob', 5]}",
                {"--exclude"},
                "{'capture': 'exclude', 'patterns': ['//a/', '//b/0:glob', 5]}"},
        KeptRow{"{'capture': 'exclude', 'patterns': 'new form'}", {"--normal"}, "{'patterns': 'new form'}"},
        KeptRow{"{'patterns': ['//a/', '//b']}", {"--add-pattern", "//x"}, "{'patterns': ['//b', '//x']}"},
        KeptRow{"{'capture': 'ignore'}",
                {"--add-pattern", "//x"},
                "{'capture': 'ignore', 'duration': 0, 'patterns': ['//x'], 'scale': 0}"},
        KeptRow{"{'capture': 'ignore'}", {"--ignore"}, nullptr},
    };
    for (const KeptRow& row : rows) {
        putFromPython("file", row.before);
        const QByteArray before = storedAsPythonReadsIt("file");
        const RunResult result =
            run(QByteArrayList{"captureprefs", "set"} + row.options + QByteArrayList{"file"}, m_here);
        EXPECT_EQ(result.status, row.after == nullptr ? 1 : 0) << row.before << result.errors.constData();
        EXPECT_EQ(storedAsPythonReadsIt("file"), row.after == nullptr ? before : row.after) << row.before;
    }
}

TEST_F(Captureprefs, LeavesTheItemAloneWhenNothingChanges)
{
    set({"--exclude"}, "file");
    struct stat before = {};
    struct stat after = {};
    ::lstat(m_tree.path("file").c_str(), &before);
    set({"--exclude"}, "file");
    ::lstat(m_tree.path("file").c_str(), &after);

    EXPECT_EQ(before.st_ctim.tv_sec, after.st_ctim.tv_sec);
    EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec);
}

TEST_F(Captureprefs, RefusesAnInvalidPatternBeforeAnythingIsWritten)
{
    m_tree.write("patterns", "//good\n\n//a/\n");
    struct Row
    {
        QByteArrayList options;
        const char* message;
    };
    const std::array rows = {
        Row{{"--pattern", "//a/"}, "havrel: //a/: Trailing / with no options\n"},
        Row{{"--add-pattern", "a///b"}, "havrel: a///b: Invalid /// encountered\n"},
        Row{{"--remove-pattern", "/x"}, "havrel: /x: Absolute path not permitted here\n"},
        Row{{"--pattern", ""}, "havrel: \"\": Incomplete pattern\n"},
        Row{{"--pattern", "//("}, nullptr},
        Row{{"--pattern", "//(/:re"}, "havrel: //(/:re: /(/ is not a valid regular expression\n"},
        Row{{"--patterns-from", "patterns"}, "havrel: patterns:3: //a/: Trailing / with no options\n"},
        Row{{"--pattern", "//bad\xff"}, "havrel: //bad\\xff: a pattern must be valid UTF-8\n"},
        Row{{"--pattern", "//5/0"}, "havrel: //5/0: it would be stored as \"//5\", which means something else\n"},
        Row{{"--pattern", "//a/", "--add-pattern", "/x"},
            "havrel: //a/: Trailing / with no options\nhavrel: /x: Absolute path not permitted here\n"},
    };
    for (const Row& row : rows) {
        clear("file");
        const RunResult result =
            run(QByteArrayList{"captureprefs", "set", "--exclude"} + row.options + QByteArrayList{"file", "folder"},
                m_here);
        EXPECT_EQ(result.status, row.message == nullptr ? 0 : 2) << row.options.join(' ').constData();
        EXPECT_EQ(result.errors, row.message == nullptr ? "" : row.message);
        EXPECT_EQ(attributeOf("file").error, row.message == nullptr ? 0 : ENODATA);
    }
}

TEST_F(Captureprefs, TakesPatternsFromFilesAndStandardInput)
{
    m_tree.write("patterns", "//a\r\n\n//b");
    set({"--patterns-from", "patterns", "--pattern", "//c"}, "file");
    EXPECT_EQ(wordsOf("file"), "normal, excluding //c, //a, //b");

    RunSettings settings = m_here;
    settings.input = "//d\n";
    EXPECT_EQ(run({"captureprefs", "set", "--patterns-from", "-", "file"}, settings).status, 0);
    EXPECT_EQ(wordsOf("file"), "normal, excluding //d");
    const RunResult missing = run({"captureprefs", "set", "--exclude", "--patterns-from", "missing", "file"}, m_here);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, "havrel: missing: No such file or directory\n");
    EXPECT_EQ(run({"captureprefs", "set", "--patterns-from", "folder", "file"}, m_here).status, 1);
    EXPECT_EQ(wordsOf("file"), "normal, excluding //d");
}

TEST_F(Captureprefs, EndsLinesOfPatternFilesWhereEveryProgramDoes)
{
    m_tree.write("patterns", "//a\v//b\f//c\r//d\xc2\x85//e\xe2\x80\xa8//f\xe2\x80\xa9//g\r\n//h\n");
    set({"--patterns-from", "patterns"}, "file");
    EXPECT_EQ(wordsOf("file"), "normal, excluding //a, //b, //c, //d, //e, //f, //g, //h");

    m_tree.write("patterns", "//a\r\n\r\n//b\v//bad\xff\n//a/");
    const RunResult result = run({"captureprefs", "set", "--patterns-from", "patterns", "folder"}, m_here);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "havrel: patterns:4: //bad\\xff: a pattern must be valid UTF-8\n"
              "havrel: patterns:5: //a/: Trailing / with no options\n");
    EXPECT_EQ(attributeOf("folder").error, ENODATA);
}

TEST_F(Captureprefs, RefusesARecordThatNobodyCouldReadUnlessForced)
{
    QByteArrayList options{"--exclude"};
    for (int i = 0; i < 43; ++i)
        options << "--add-pattern"
                << "//" + QByteArray::number(i).rightJustified(14, 'x');
    const QByteArrayList all = QByteArrayList{"captureprefs", "set"} + options + QByteArrayList{"file"};
    const RunResult refused = run(all, m_here);

    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.errors.startsWith("havrel: file: its preferences would take 1029 bytes"))
        << refused.errors.constData();
    EXPECT_EQ(attributeOf("file").error, ENODATA);

    EXPECT_EQ(run(all + QByteArrayList{"--force"}, m_here).status, 0);
    EXPECT_EQ(attributeOf("file").bytes.size(), 1029);
    const RunResult shown = run({"captureprefs", "show", "file"}, m_here);
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.output, "file: normal\n");
    EXPECT_TRUE(shown.errors.contains("more than 1024 bytes")) << shown.errors.constData();
}

TEST_F(Captureprefs, ShowsThatPreferencesAreMalformedAndReplacesThemOnlyWhenForced)
{
    put("file", "nonsense");
    const RunResult shown = run({"captureprefs", "show", "--json", "file"}, m_here);
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.output, "{\"path\":\"file\",\"preferences\":null,\"description\":\"normal\"}\n");
    EXPECT_TRUE(shown.errors.startsWith("havrel: file: its preferences are malformed (")) << shown.errors.constData();

    const RunResult refused = run({"captureprefs", "set", "--exclude", "file"}, m_here);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.errors.contains("--force replaces them")) << refused.errors.constData();
    EXPECT_EQ(attributeOf("file").bytes, "nonsense");

    set({"--exclude", "--force"}, "file");
    EXPECT_EQ(wordsOf("file"), "excluded");
}

TEST_F(Captureprefs, ClearsWhateverIsThere)
{
    put("file", "nonsense");
    put("folder", "");
    m_tree.addLink("link", "file");

    EXPECT_EQ(run({"captureprefs", "clear", "file", "folder", "link"}, m_here).status, 0);
    EXPECT_EQ(attributeOf("file").error, ENODATA);
    EXPECT_EQ(attributeOf("folder").error, ENODATA);
    EXPECT_EQ(run({"captureprefs", "clear", "file"}, m_here).status, 0) << "clearing twice is no failure";

    const RunResult result = run({"captureprefs", "clear", "missing"}, m_here);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "havrel: missing: No such file or directory\n");
}

TEST_F(Captureprefs, NeverFollowsALink)
{
    m_tree.addLink("link", "folder");
    for (const char* name : {"link", "link/", "link///", "link/.", "link/.//./"}) {
        const RunResult result = run({"captureprefs", "set", "--exclude", name}, m_here);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "havrel: link: a symbolic link cannot carry preferences; its target can: folder\n");
    }
    EXPECT_EQ(attributeOf("folder").error, ENODATA);

    set({"--exclude"}, "folder");
    EXPECT_EQ(wordsOf("link"), "normal");
    EXPECT_EQ(run({"captureprefs", "list", "link"}, m_here).output, "");
}

TEST_F(Captureprefs, SaysThatAPipeCannotCarryPreferences)
{
    ASSERT_EQ(::mkfifo(m_tree.path("pipe").c_str(), 0600), 0);
    const RunResult result = run({"captureprefs", "set", "--exclude", "pipe"}, m_here);

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "havrel: pipe: only files and folders can carry preferences\n");
}

TEST_F(Captureprefs, SaysWhichOptionsGoTogether)
{
    set({"--exclude"}, "file");
    const RunResult result = run({"captureprefs", "set", "--for", "2 days", "file"}, m_here);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "havrel: file: --for and --between go with --ignore (it is \"excluded\" now)\n");
    EXPECT_EQ(wordsOf("file"), "excluded");

    EXPECT_EQ(run({"captureprefs", "set", "--exclude", "--for", "2 days", "file"}, m_here).status, 2);
    EXPECT_EQ(run({"captureprefs", "set", "--exclude", "--normal", "file"}, m_here).status, 2);
    EXPECT_EQ(run({"captureprefs", "set", "--after", "1d", "--immediately", "file"}, m_here).status, 2);
    EXPECT_EQ(run({"captureprefs", "set", "--ignore", "--for", "soon", "file"}, m_here).status, 2);
    EXPECT_EQ(run({"captureprefs", "set", "--ignore", "--between", "9-17", "file"}, m_here).status, 2);
    EXPECT_EQ(run({"captureprefs", "set", "file"}, m_here).status, 2);
    EXPECT_EQ(run({"captureprefs", "set", "--exclude"}, m_here).status, 2);
    EXPECT_EQ(wordsOf("file"), "excluded");
}

TEST_F(Captureprefs, ReplacesWhatMayBeWrittenButNotReadOnlyWhenForced)
{
    set({"--exclude", "--pattern", "//a"}, "file");
    ::chmod(m_tree.root().c_str(), 0755);
    ::chmod(m_tree.path("file").c_str(), 0222);
    RunSettings settings = m_here;
    settings.asOrdinaryUser = true;
    const RunResult refused = run({"captureprefs", "set", "--scrape", "file"}, settings);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "havrel: file: no permission to read it\n");

    EXPECT_EQ(run({"captureprefs", "set", "--force", "--scrape", "--immediately", "file"}, settings).errors, "");
    ::chmod(m_tree.path("file").c_str(), 0644);
    EXPECT_EQ(wordsOf("file"), "scrape");
}

TEST_F(Captureprefs, SaysWhatAnOrdinaryUserMayNot)
{
    set({"--exclude"}, "file");
    ::chmod(m_tree.root().c_str(), 0755);
    ::chmod(m_tree.path("file").c_str(), 0444);
    ::chmod(m_tree.path("folder").c_str(), 0700);
    if (::geteuid() == 0 && ::chown(m_tree.path("file").c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "cannot give a file to another user";
    RunSettings settings = m_here;
    settings.asOrdinaryUser = true;
    const RunResult result = run({"captureprefs", "set", "--normal", "file"}, settings);

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "havrel: file: no permission to write it (preferences need write permission, its owner's too)\n");
    EXPECT_EQ(wordsOf("file"), "excluded");
    EXPECT_EQ(run({"captureprefs", "show", "file"}, settings).output, "file: excluded\n");
    if (::geteuid() != 0)
        return;
    const RunResult listed = run({"captureprefs", "list", "."}, settings);
    EXPECT_EQ(listed.status, 1);
    EXPECT_EQ(listed.output, "./file: excluded\n");
    EXPECT_EQ(listed.errors, "havrel: ./folder: no permission to read it\n");
}

} // namespace
} // namespace havrel::tests
