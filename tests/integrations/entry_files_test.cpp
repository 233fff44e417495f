// SPDX-License-Identifier: MIT
#include "integrations/entry_files.h"

#include "integrations/catalogue.h"
#include "integrations/file_manager.h"
#include "integrations/key_file.h"
#include "tests/support/outside_program.h"
#include "tests/support/temporary_tree.h"

#include <QHash>
#include <QSet>

#include <gtest/gtest.h>

namespace havrel::integrations {
namespace {

using KeyFiles = QHash<QByteArray, QHash<QByteArray, QByteArray>>; // groups of keys

KeyFiles readKeyFile(const QByteArray& text)
{
    KeyFiles groups;
    QByteArray group;
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith('['))
            group = line.mid(1, line.size() - 2);
        else if (line.contains('=') && !line.startsWith('#'))
            groups[group][line.left(line.indexOf('='))] = line.mid(line.indexOf('=') + 1);
    }
    return groups;
}

QByteArray contentsOf(const QList<EntryFile>& files, const QByteArray& path)
{
    for (const EntryFile& each : files)
        if (each.path == path)
            return each.contents;
    ADD_FAILURE() << "no " << path.constData();
    return {};
}

QList<EntryFile> extensions()
{
    return nautilusExtension() + nemoExtension() + cajaExtension() + thunarExtension();
}

QList<EntryFile> allFiles()
{
    QList<EntryFile> files = desktopEntry() + metainfo();
    for (const FileManager& manager : fileManagers())
        for (const Way& way : manager.ways)
            if (!way.isSharedFile())
                files += way.files();
    return files;
}

TEST(Catalogue, HasTheCommandsInBothLanguages)
{
    QByteArrayList titles;
    for (const MenuCommand& each : menuCommands()) {
        titles.append(each.title.english);
        for (const Text& text : {each.title, each.hint}) {
            EXPECT_STRNE(text.german, text.english);
            EXPECT_TRUE(QByteArray(text.german).isValidUtf8());
        }
    }
    EXPECT_EQ(titles, (QByteArrayList{"Capture to Archive...", "Reveal in Archive...", "Capture Preferences..."}));
}

TEST(KeyFile, EscapesWhatTheFormatGivesAMeaning)
{
    const QByteArray text = KeyFile().group("A").set("k", " a\\b\nc\td\r").text();
    EXPECT_TRUE(text.endsWith("\n[A]\nk=\\sa\\\\b\\nc\\td\\r\n")) << text.constData();
}

TEST(EntryFiles, HaveNamesOfTheirOwnBelowADataFolder)
{
    QSet<QByteArray> names;
    for (const EntryFile& each : allFiles()) {
        EXPECT_FALSE(each.path.startsWith('/'));
        EXPECT_TRUE(each.path.toLower().contains("havrel")) << each.path.constData();
        EXPECT_TRUE(each.contents.contains("SPDX-License-Identifier")) << each.path.constData();
        EXPECT_FALSE(each.contents.contains('@')) << each.path.constData() << " has a place that was not filled in";
        EXPECT_FALSE(names.contains(each.path)) << each.path.constData();
        names.insert(each.path);
    }
    EXPECT_EQ(names.size(), 14);
}

TEST(EntryFiles, ShowEachCommandInBothLanguagesWhereverTheyAre)
{
    QByteArray dolphin = dolphinServiceMenu().constFirst().contents;
    for (const MenuCommand& each : menuCommands()) {
        const QByteArray id = each.id;
        const KeyFiles nemo = readKeyFile(contentsOf(nemoActions(), "nemo/actions/havrel-" + id + ".nemo_action"));
        const KeyFiles pcmanfm =
            readKeyFile(contentsOf(fileManagerActions(), "file-manager/actions/havrel-" + id + ".desktop"));
        for (const auto& group : {nemo["Nemo Action"],
                                  pcmanfm["Desktop Entry"],
                                  readKeyFile(dolphin)["Desktop Action " + id],
                                  readKeyFile(desktopEntry().constFirst().contents)["Desktop Action " + id]}) {
            EXPECT_EQ(group["Name"], each.title.english);
            EXPECT_EQ(group["Name[de]"], each.title.german);
        }
        for (const EntryFile& extension : extensions()) {
            EXPECT_TRUE(extension.contents.contains(each.title.english)) << extension.path.constData();
            EXPECT_TRUE(extension.contents.contains(each.title.german)) << extension.path.constData();
        }
    }
}

TEST(EntryFiles, HandOverAbsolutePathsBehindTheOptionsWhereThereAreOnlyArguments)
{
    const KeyFiles dolphin = readKeyFile(dolphinServiceMenu().constFirst().contents);
    for (const MenuCommand& each : menuCommands()) {
        const QByteArray id = each.id;
        const QByteArray line = "havrel " + QByteArray(each.words) + " -- %F";
        EXPECT_EQ(dolphin["Desktop Action " + id]["Exec"], line);
        const KeyFiles nemo = readKeyFile(contentsOf(nemoActions(), "nemo/actions/havrel-" + id + ".nemo_action"));
        EXPECT_EQ(nemo["Nemo Action"]["Exec"], line);
        EXPECT_EQ(nemo["Nemo Action"]["Quote"], "double"); // else names with line ends are damaged
        const KeyFiles pcmanfm =
            readKeyFile(contentsOf(fileManagerActions(), "file-manager/actions/havrel-" + id + ".desktop"));
        EXPECT_EQ(pcmanfm["X-Action-Profile main"]["Exec"], line);
    }
}

TEST(EntryFiles, LeaveOutWhatIsNotOnThisComputer)
{
    EXPECT_EQ(readKeyFile(dolphinServiceMenu().constFirst().contents)["Desktop Entry"]["X-KDE-Protocols"], "file");
    for (const EntryFile& each : nemoActions())
        EXPECT_EQ(readKeyFile(each.contents)["Nemo Action"]["UriScheme"], "file");
    for (const EntryFile& each : fileManagerActions())
        EXPECT_FALSE(each.contents.contains("Schemes=")); // PCManFM crashes on it; the program refuses such items
}

// The names are those that the service knows on the bus, where a desktop calls them.
TEST(DesktopEntry, NamesTheActionsAsTheServiceDoes)
{
    const KeyFiles file = readKeyFile(desktopEntry().constFirst().contents);
    EXPECT_EQ(file["Desktop Entry"]["DBusActivatable"], "true");
    EXPECT_EQ(file["Desktop Entry"]["Actions"], "capture;reveal;preferences;");
}

// Dolphin cannot be driven here, so that its file is held against what its documentation asks for.
TEST(DolphinServiceMenu, SaysWhatServiceMenusMustSay)
{
    const KeyFiles file = readKeyFile(dolphinServiceMenu().constFirst().contents);
    const auto entry = file["Desktop Entry"];
    EXPECT_EQ(entry["Type"], "Service");
    EXPECT_EQ(entry["MimeType"], "all/all;"); // files and folders
    EXPECT_EQ(entry["X-KDE-Submenu"], "Havrel");
    EXPECT_EQ(entry["X-KDE-Priority"], "TopLevel");
    QByteArrayList actions = entry["Actions"].split(';');
    EXPECT_EQ(actions.takeLast(), "");
    EXPECT_EQ(actions.size(), 3);
    for (const QByteArray& each : actions)
        EXPECT_TRUE(file.contains("Desktop Action " + each)) << each.constData();
    EXPECT_EQ(file.size(), 4);
}

TEST(FileManagerActions, FillTheMenuWithEveryAction)
{
    const KeyFiles menu = readKeyFile(contentsOf(fileManagerActions(), "file-manager/actions/havrel-menu.desktop"));
    QByteArrayList items = menu["Desktop Entry"]["ItemsList"].split(';');
    EXPECT_EQ(items.takeLast(), "");
    EXPECT_EQ(items.size(), 3);
    for (const QByteArray& each : items)
        EXPECT_FALSE(contentsOf(fileManagerActions(), "file-manager/actions/" + each + ".desktop").isEmpty());
    EXPECT_EQ(menu["Desktop Entry"]["Tooltip"], "Havrel"); // PCManFM shows this as the title
}

TEST(NemoActions, HideWhereTheExtensionIsInstalledForEverybody)
{
    for (const EntryFile& each : nemoActions())
        EXPECT_EQ(readKeyFile(each.contents)["Nemo Action"]["Dependencies"],
                  "havrel;!/usr/share/nemo-python/extensions/havrel_nemo_menu.py;");
}

/// Runs an extension with a stand-in for the file manager's interface and for the desktop's libraries.
QByteArray resultOfExtension(const EntryFile& extension, const QByteArray& script)
{
    const TemporaryTree tree;
    tree.write("extension.py", extension.contents.toStdString());
    const QByteArray stage = R"PY(
import sys, types

class Recorded:
    def __init__(self, **properties): self.__dict__.update(properties)
    def connect(self, signal, run, *arguments): self.activate = lambda: run(self, *arguments)
    def set_submenu(self, menu): self.menu = menu
    set_menu = set_submenu
    def append_item(self, item): self.__dict__.setdefault("items", []).append(item)

class Provider: pass
class File:
    def __init__(self, uri): self.uri = uri
    def get_uri(self): return self.uri

class Process:
    def communicate_async(self, given, cancellable, done): print(given)
    @staticmethod
    def new(arguments, flags): print(arguments); return Process()

languages, programs = ["C"], ["havrel"]
manager = types.SimpleNamespace(Menu=Recorded, MenuItem=Recorded, MenuProvider=Provider)
repository = types.ModuleType("gi.repository")
repository.Gio = types.SimpleNamespace(Subprocess=Process, SubprocessFlags=types.SimpleNamespace(STDIN_PIPE=1))
repository.GLib = types.SimpleNamespace(Error=OSError, Bytes=types.SimpleNamespace(new=bytes),
    get_language_names=lambda: languages, find_program_in_path=lambda name: name if name in programs else None)
repository.GObject = types.SimpleNamespace(GObject=type("GObject", (), {}))
for name in ("Nautilus", "Nemo", "Caja", "Thunarx"): setattr(repository, name, manager)
sys.modules.update({"gi": types.ModuleType("gi"), "gi.repository": repository})
sys.dont_write_bytecode = True
sys.path.insert(0, PLACE)
import extension
providers = [each for each in vars(extension).values() if isinstance(each, type) and issubclass(each, Provider)]
assert len(providers) == 1
provider = providers[0]()
def menu(*uris):
    items = getattr(provider, "get_file_items", getattr(provider, "get_file_menu_items", None))(
        "window", [File(uri) for uri in uris])
    return items[0].menu.items if items else []
)PY";
    QByteArray all = stage;
    all.replace("PLACE", '"' + QByteArray::fromStdString(tree.root()) + '"');
    return outputOfPython((all + script).constData());
}

TEST(Extension, HandsEveryItemToTheProgramThroughAPipe)
{
    const QByteArray script = "menu('file:///a%FF%0A', 'file:///b%25c')[2].activate()\n"
                              "menu('file:///a')[0].activate()\n";
    for (const EntryFile& each : extensions())
        EXPECT_EQ(resultOfExtension(each, script),
                  "['havrel', 'captureprefs', 'edit', '--items-from', '-']\n"
                  "b'file:///a%FF%0A\\x00file:///b%25c\\x00'\n"
                  "['havrel', 'capture', '--items-from', '-']\n"
                  "b'file:///a\\x00'\n")
            << each.path.constData();
}

TEST(Extension, ShowsNothingForWhatIsNotOnThisComputer)
{
    const QByteArray script = "print(len(menu('file:///a', 'smb://host/b')), len(menu('trash:///a')), len(menu()),\n"
                              "      len(menu('file://host/a')), len(menu('file:///a')))";
    for (const EntryFile& each : extensions())
        EXPECT_EQ(resultOfExtension(each, script), "0 0 0 0 3\n") << each.path.constData();
}

TEST(Extension, ShowsNothingWithoutTheProgram)
{
    for (const EntryFile& each : extensions())
        EXPECT_EQ(resultOfExtension(each, "programs.clear(); print(len(menu('file:///a')))"), "0\n");
}

TEST(Extension, SpeaksTheFirstLanguageOfTheUserThatItKnows)
{
    const QByteArray script = "for known in (['C'], ['fr', 'C'], ['de_AT.UTF-8', 'de_AT', 'de', 'C'], ['en', 'de']):\n"
                              "    languages[:] = known\n"
                              "    print(menu('file:///a')[1].label)";
    for (const EntryFile& each : extensions())
        EXPECT_EQ(resultOfExtension(each, script),
                  "Reveal in Archive...\nReveal in Archive...\nIm Archiv zeigen...\nReveal in Archive...\n");
}

TEST(Extension, HasAModuleAndAClassOfItsOwn)
{
    QSet<QByteArray> names;
    for (const EntryFile& each : extensions()) {
        names.insert(each.path.mid(each.path.lastIndexOf('/')));
        const qsizetype at = each.contents.indexOf("\nclass ");
        names.insert(each.contents.mid(at, each.contents.indexOf('(', at) - at));
    }
    EXPECT_EQ(names.size(), 8);
}

} // namespace
} // namespace havrel::integrations
