// SPDX-License-Identifier: MIT
#include "integrations/catalogue.h"
#include "integrations/entry_files.h"
#include "integrations/extension_template.h"

namespace havrel::integrations {
namespace {

/// Wherein the interfaces of the file managers differ.
struct Host
{
    const char* module;     ///< "Nautilus"
    const char* folder;     ///< "nautilus-python"
    const char* method;     ///< that the host asks for the items of the menu
    const char* setSubmenu; ///< the method that hangs a menu below an item
    const char* hint;       ///< the property that takes a hint; null: not looked at
};

constexpr Host kNautilus{"Nautilus", "nautilus-python", "get_file_items", "set_submenu", nullptr};
constexpr Host kNemo{"Nemo", "nemo-python", "get_file_items", "set_submenu", "tip"};
constexpr Host kCaja{"Caja", "caja-python", "get_file_items", "set_submenu", "tip"};
constexpr Host kThunar{"Thunarx", "thunarx-python", "get_file_menu_items", "set_menu", "tooltip"};

QByteArray quoted(QByteArray text)
{
    return '"' + text.replace('\\', "\\\\").replace('"', "\\\"") + '"';
}

QByteArray byLanguage(const Text& text)
{
    const QByteArray indent(12, ' ');
    return "{\n" + indent + "\"en\": " + quoted(text.english) + ",\n" + indent + "\"de\": " + quoted(text.german) +
           ",\n        }";
}

QByteArray commands()
{
    QByteArray rows;
    for (const MenuCommand& each : menuCommands()) {
        QByteArray words;
        for (const QByteArray& word : QByteArray(each.words).split(' '))
            words += quoted(word) + ", ";
        words.chop(words.count(',') == 1 ? 1 : 2); // a tuple of one needs its comma
        rows += "    (\n        (" + words + "),\n        " + byLanguage(each.title) + ",\n        " +
                byLanguage(each.hint) + ",\n    ),\n";
    }
    return rows;
}

/// Further arguments of an item: some hosts insist on a hint and an icon.
QByteArray furtherArguments(const Host& host, const QByteArray& hint)
{
    return host.hint == nullptr ? QByteArray() : ", " + QByteArray(host.hint) + '=' + hint + ", icon=_ICON";
}

QList<EntryFile> extensionFor(const Host& host)
{
    const QByteArray module = host.module;
    QByteArray text = kExtensionTemplate;
    text.replace("@COMMANDS@", commands())
        .replace("@MODULE@", module)
        .replace("@METHOD@", host.method)
        .replace("@SET_SUBMENU@", host.setSubmenu)
        .replace("@MENU@", kMenuTitle)
        .replace("@ICON@", kApplicationId)
        .replace("@ITEM_HINT@", furtherArguments(host, "_in(hints)"))
        .replace("@TOP_HINT@", furtherArguments(host, "\"\""));
    // Hosts import all extensions by their bare names into one interpreter, so the name must be like no other.
    return {{QByteArray(host.folder) + "/extensions/havrel_" + module.toLower() + "_menu.py", text}};
}

} // namespace

QList<EntryFile> nautilusExtension()
{
    return extensionFor(kNautilus);
}

QList<EntryFile> nemoExtension()
{
    return extensionFor(kNemo);
}

QList<EntryFile> cajaExtension()
{
    return extensionFor(kCaja);
}

QList<EntryFile> thunarExtension()
{
    return extensionFor(kThunar);
}

} // namespace havrel::integrations
