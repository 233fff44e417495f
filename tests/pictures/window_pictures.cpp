// SPDX-License-Identifier: MIT
// Takes pictures of the windows in every state, on real items: scripts/pictures runs it once for
// each way of showing windows (language, direction, palette, scale, font).
//
// usage: window_pictures [--dark] [--rtl] [--font POINTS] [--language CODE] FOLDER SUFFIX [STATE...]
#include "app/service_application_delegate.h"
#include "capture_prefs_ui/alert.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "capture_prefs_ui/pattern_table_simple_cell_view.h"
#include "capture_prefs_ui/resizing_pattern_text_field.h"
#include "capture_prefs_ui/table_view.h"
#include "capture_prefs_ui/visible_indicators.h"
#include "filters/pattern_filter_def.h"
#include "fs/path.h"
#include "tests/pictures/archive_picker_picture.h"
#include "tests/support/fake_timers.h"
#include "tests/support/recording_applications.h"
#include "tests/support/temporary_tree.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QStyleFactory>
#include <QTest>
#include <QTimer>
#include <QTranslator>

#include <cstdio>
#include <functional>

namespace havrel::tests {
namespace {

constexpr QRgb kBright = 0xffebebeb; // texts on dark

/// A state of the window: the items in it and what is done to it.
struct Picture
{
    const char* name;
    std::vector<const char*> items;
    std::function<void(CapturePreferencesController&, FakeTimers&)> act;
};

void click(CapturePreferencesController& controller, const char* button)
{
    controller.window().findChild<QAbstractButton*>(QLatin1String(button))->click();
}

/// Into the first row, as a user does who then goes on to the next field.
void typeBadPattern(CapturePreferencesController& controller)
{
    auto* row = qobject_cast<PatternTableSimpleCellView*>(
        controller.window().findChild<TableView*>(QStringLiteral("tableView"))->viewAtRow(0));
    QApplication::setActiveWindow(&controller.window());
    row->pathField()->setFocus();
    QTest::keyClick(row->pathField(), Qt::Key_End);
    QTest::keyClicks(row->pathField(), QStringLiteral("/"));
    QTest::keyClick(row->pathField(), Qt::Key_Tab);
}

void store(const TemporaryTree& tree, const char* item, CaptureOption option, const QStringList& patterns)
{
    FileCapturePreferences preferences;
    preferences.option = option;
    preferences.setExcludeFilterDefs(
        PatternFilterDef::filterDefsFromStrings(patterns, PatternFilterDef::itemEnvironment()));
    preferences.setPreferencesAtPath(*JNPath::withCPath(tree.bytes(std::string("Documents/") + item)));
}

void storeAll(const TemporaryTree& tree)
{
    const QString temporary = QStringLiteral("Library//*.tmp/+:glob");
    const QString logs = QStringLiteral("//^log[0-9]+$/0:re");
    const QString complete = QStringLiteral("a//b/c");
    store(tree, "Projects", CaptureOption::Normal, {temporary, logs, complete});
    store(tree, "Photos", CaptureOption::Scrape, {temporary});
    store(tree, "Music", CaptureOption::IgnoreChanges, {temporary, logs});
}

const std::vector<Picture>& pictures()
{
    static const std::vector<Picture> all{
        {"folder", {"Projects"}, {}},
        {"empty", {"New folder"}, {}},
        {"file", {"Notes.txt"}, {}},
        {"several", {"Projects", "Photos", "Music", "Notes.txt", "Letter.odt"}, {}},
        {"excluding", {"Projects"}, [](auto& controller, auto&) { click(controller, "optionExcludeButton"); }},
        {"ignoring",
         {"Projects"},
         [](auto& controller, auto& timers) {
             click(controller, "optionIgnoreButton");
             click(controller, "ignoreBetweenButton");
             timers.pass(std::chrono::seconds(2));
         }},
        {"scraping",
         {"Projects"},
         [](auto& controller, auto& timers) {
             click(controller, "optionScrapeContentsButton");
             timers.pass(std::chrono::seconds(7));
         }},
        {"permission", {"New folder", "Missing", "Missing too", "Missing, too"}, {}},
        {"not-saved",
         {"Projects", "Lost"},
         [](auto& controller, auto& timers) {
             click(controller, "optionExcludeButton");
             QFile::remove(controller.items().last().toLocalFile());
             timers.pass(std::chrono::seconds(7));
         }},
        {"changed-elsewhere",
         {"Photos"},
         [](auto& controller, auto& timers) {
             FileCapturePreferences().setPreferencesAtPath(*JNPath::withURL(controller.items().first()));
             Q_EMIT controller.window().activated();
             timers.pass(std::chrono::seconds(0));
         }},
        {"problem", {"Projects"}, [](auto& controller, auto&) { typeBadPattern(controller); }},
    };
    return all;
}

/// As the desktops' dark themes have it: edges are lighter or darker than what they are on, never the same.
void darken()
{
    struct Role
    {
        QPalette::ColorRole role;
        QRgb colour;
    };
    constexpr Role roles[] = {
        {QPalette::Window, 0xff353535},
        {QPalette::Base, 0xff2d2d2d},
        {QPalette::AlternateBase, 0xff323232},
        {QPalette::Button, 0xff454545},
        {QPalette::Light, 0xff656565},
        {QPalette::Midlight, 0xff555555},
        {QPalette::Mid, 0xff2a2a2a},
        {QPalette::Dark, 0xff1e1e1e},
        {QPalette::Shadow, 0xff101010},
        {QPalette::ToolTipBase, 0xff454545},
        {QPalette::WindowText, kBright},
        {QPalette::Text, kBright},
        {QPalette::ButtonText, kBright},
        {QPalette::ToolTipText, kBright},
        {QPalette::Highlight, 0xff3584e4},
        {QPalette::HighlightedText, 0xffffffff},
        {QPalette::PlaceholderText, 0xffa0a0a5},
    };
    QPalette dark;
    for (const Role& each : roles)
        dark.setColor(each.role, QColor::fromRgba(each.colour));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(125, 125, 128));
    QApplication::setPalette(dark);
}

/// Dialogs stand in the middle of their window, everything else where it put itself.
QPoint placeOver(const QWidget& window, const QWidget& over)
{
    if (qobject_cast<const QDialog*>(&over) != nullptr)
        return window.rect().center() - over.rect().center();
    return over.pos() - window.pos();
}

/// A dialog gets a line around it in place of a window manager's frame.
void paintOver(QPainter& painter, const QPoint& place, QWidget& over)
{
    painter.drawPixmap(place, over.grab());
    if (qobject_cast<const QDialog*>(&over) == nullptr)
        return;
    painter.setPen(over.palette().color(QPalette::PlaceholderText));
    painter.drawRect(QRect(place, over.size()).adjusted(-1, -1, 0, 0));
}

/// The window with what lies over it: the offscreen display shows each window by itself only.
QPixmap pictureOf(QWidget& window)
{
    QPixmap picture = window.grab();
    QPainter painter(&picture);
    for (QWidget* each : QApplication::topLevelWidgets())
        if (each != &window && each->isVisible())
            paintOver(painter, placeOver(window, *each), *each);
    return picture;
}

bool take(const Picture& picture, const TemporaryTree& tree, const QString& file)
{
    WidgetAlertPresenter alerts;
    FakeTimers timers;
    CapturePreferencesController controller(
        alerts, [] {}, timers);
    QList<QUrl> urls;
    for (const char* each : picture.items)
        urls.append(JNPath::withCPath(tree.bytes(std::string("Documents/") + each))->url());
    if (!controller.prepareWithItems(urls))
        return false;
    controller.showWindow();
    if (picture.act)
        picture.act(controller, timers);
    QApplication::processEvents();
    QApplication::processEvents();
    return pictureOf(controller.window()).save(file);
}

/// The alert about a component that cannot be reached.
bool takeConnectionAlert(const TemporaryTree& /*tree*/, const QString& file)
{
    WidgetAlertPresenter alerts;
    RecordingApplications applications;
    FakeTimers timers;
    bool isTaken = false;
    QTimer::singleShot(0, [&] { // in the loop of the alert
        QWidget* alert = QApplication::activeModalWidget();
        isTaken = alert && alert->grab().save(file) && alert->close();
    });
    ServiceApplicationDelegate({.alerts = alerts,
                                .applications = applications,
                                .timers = timers,
                                .registerServices = [] {},
                                .terminate = [] {}})
        .noMonitorAlert();
    return isTaken;
}

/// Every picture by its name, and what takes it.
using Takers = std::vector<std::pair<QString, std::function<bool(const TemporaryTree& tree, const QString& file)>>>;

Takers takers()
{
    Takers all;
    for (const Picture& each : pictures())
        all.emplace_back(QLatin1String(each.name),
                         [&each](const auto& tree, const auto& file) { return take(each, tree, file); });
    using Listed = std::function<PicturedArchives(const TemporaryTree& tree)>;
    const auto addPicker = [&all](const char* name, const Listed& listed) {
        all.emplace_back(QLatin1String(name), [listed](const auto& tree, const auto& file) {
            return archivePickerPicture(listed(tree)).save(file);
        });
    };
    addPicker("picker", fewArchives);
    addPicker("picker-many", manyArchives);
    addPicker("picker-none", [](const auto&) { return PicturedArchives(); });
    all.emplace_back(QStringLiteral("no-monitor"), takeConnectionAlert);
    return all;
}

int run(const QStringList& arguments)
{
    const TemporaryTree tree{"Documents/Projects/",
                             "Documents/Photos/",
                             "Documents/Music/",
                             "Documents/New folder/",
                             "Documents/Notes.txt",
                             "Documents/Letter.odt",
                             "Documents/Lost",
                             "Archives/Home.zephra",
                             "Archives/Work.zephra",
                             "Archives/Laptop.zephra"};
    qputenv("HOME", tree.bytes("")); // so that the pictures say "~/Documents" everywhere
    qputenv("XDG_STATE_HOME", tree.bytes("state"));
    storeAll(tree);
    const QString suffix = arguments[1].isEmpty() ? QString() : u'-' + arguments[1];
    for (const auto& [name, taker] : takers()) {
        if (arguments.size() > 2 && !arguments.mid(2).contains(name))
            continue;
        const QString file = QDir(arguments[0]).filePath(name + suffix + QStringLiteral(".png"));
        if (!taker(tree, file)) {
            std::fprintf(stderr, "cannot take %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}

} // namespace
} // namespace havrel::tests

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    havrel::VisibleIndicators::install();           // as the service does
    QIcon::setThemeName(QStringLiteral("hicolor")); // as without a desktop
    QCommandLineParser options;
    options.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("where the pictures go"));
    options.addPositionalArgument(QStringLiteral("suffix"), QStringLiteral("of the names of the pictures"));
    options.addPositionalArgument(QStringLiteral("state"), QStringLiteral("only these states"));
    const QCommandLineOption dark(QStringLiteral("dark"), QStringLiteral("a dark palette"));
    const QCommandLineOption mirrored(QStringLiteral("rtl"), QStringLiteral("right to left"));
    const QCommandLineOption font(QStringLiteral("font"), QStringLiteral("size of texts"), QStringLiteral("points"));
    const QCommandLineOption language(
        QStringLiteral("language"), QStringLiteral("of the texts"), QStringLiteral("code"));
    options.addOptions({dark, mirrored, font, language});
    options.process(application);
    if (options.isSet(dark))
        havrel::tests::darken();
    if (options.isSet(mirrored))
        QApplication::setLayoutDirection(Qt::RightToLeft);
    QTranslator translator;
    if (options.isSet(language)) {
        QLocale::setDefault(QLocale(options.value(language)));
        if (translator.load(QStringLiteral(":/i18n/havrel_%1.qm").arg(options.value(language))))
            QApplication::installTranslator(&translator);
    }
    QFont texts = QApplication::font();
    texts.setPointSizeF(options.isSet(font) ? options.value(font).toDouble() : 10);
    QApplication::setFont(texts);
    if (options.positionalArguments().size() < 2)
        options.showHelp(2);
    return havrel::tests::run(options.positionalArguments());
}
