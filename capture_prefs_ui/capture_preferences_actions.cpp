// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "capture_prefs_ui/capture_preferences_window.h"
#include "capture_prefs_ui/help_pages.h"
#include "foundation/date_additions.h"
#include "foundation/dispatch.h"

#include <QButtonGroup>

#include <ui_CapturePreferencesWindow.h>

namespace havrel {
namespace {

/// \source the name of the help page's section, see resources/help.
const QString kHelpAnchor = QStringLiteral("capprefs");

DurationScale selectedTag(const QComboBox& menu)
{
    return static_cast<DurationScale>(menu.currentData().toUInt());
}

/// Of the picker's own date, on which no clock is changed.
quint64 selectedMinute(const QTimeEdit& picker)
{
    return static_cast<quint64>(minuteOfDay(QDateTime(picker.date(), picker.time())));
}

} // namespace

void CapturePreferencesController::connectControls()
{
    Ui::CapturePreferencesWindow& ui = m_window->outlets();
    // Only what the user does: signals of mere changes also come from updateView.
    connect(&m_window->optionButtons(), &QButtonGroup::buttonClicked, this, [this](QAbstractButton* button) {
        runAtWall([this, button] { setOption(*button); });
    });
    connect(ui.allArchivesButton, &QAbstractButton::clicked, this, [this, &ui] {
        runAtWall([this, &ui] { setAllArchives(*ui.allArchivesButton); });
    });
    connectIgnoring();
    connectScraping();
    connect(ui.helpButton, &QAbstractButton::clicked, this, &CapturePreferencesController::openHelp);
    connect(ui.statusLine, &StatusLine::saveNow, this, [this] { runAtWall([this] { saveNow(); }); });
    connect(ui.statusLine, &StatusLine::reload, this, [this] { runAtWall([this] { reload(); }); });
    connect(m_window.get(), &CapturePreferencesWindow::activated, this, [this] { lookForForeignChanges(); });
    connect(
        m_window.get(), &CapturePreferencesWindow::closing, this, [this] { runAtWall([this] { windowWillClose(); }); });
}

void CapturePreferencesController::connectIgnoring()
{
    Ui::CapturePreferencesWindow& ui = m_window->outlets();
    connect(ui.ignoreDurationField, &DurationField::valueEdited, this, [this, &ui] {
        runAtWall([this, &ui] { setIgnoreDuration(*ui.ignoreDurationField); });
    });
    connect(ui.ignoreScaleMenu, &QComboBox::activated, this, [this, &ui] {
        runAtWall([this, &ui] { setIgnoreScale(*ui.ignoreScaleMenu); });
    });
    connect(ui.ignoreBetweenButton, &QAbstractButton::clicked, this, [this, &ui] {
        runAtWall([this, &ui] { setIgnoreBetween(*ui.ignoreBetweenButton); });
    });
    // The window blocks the pickers' signals while it shows a state.
    connect(ui.ignoreFromPicker, &QTimeEdit::timeChanged, this, [this, &ui] {
        runAtWall([this, &ui] { setIgnoreFromTime(*ui.ignoreFromPicker); });
    });
    connect(ui.ignoreToPicker, &QTimeEdit::timeChanged, this, [this, &ui] {
        runAtWall([this, &ui] { setIgnoreToTime(*ui.ignoreToPicker); });
    });
}

void CapturePreferencesController::connectScraping()
{
    Ui::CapturePreferencesWindow& ui = m_window->outlets();
    connect(ui.scrapeImmediatelyButton, &QAbstractButton::clicked, this, [this, &ui] {
        runAtWall([this, &ui] { setScrapeImmediately(*ui.scrapeImmediatelyButton); });
    });
    connect(ui.scrapeAfterButton, &QAbstractButton::clicked, this, [this, &ui] {
        runAtWall([this, &ui] { setScrapeAfter(*ui.scrapeAfterButton); });
    });
    connect(ui.scrapeDurationField, &DurationField::valueEdited, this, [this, &ui] {
        runAtWall([this, &ui] { setScrapeDuration(*ui.scrapeDurationField); });
    });
    connect(ui.scrapeScaleMenu, &QComboBox::activated, this, [this, &ui] {
        runAtWall([this, &ui] { setScrapeScale(*ui.scrapeScaleMenu); });
    });
}

template<class Value>
void CapturePreferencesController::setOnPrefs(OptionRange range,
                                              Value FileCapturePreferences::*property,
                                              const Value& value)
{
    for (FileCapturePreferences* each : prefsForOptions(range))
        each->*property = value;
    updateViewAndMakeDirty();
}

CaptureOption CapturePreferencesController::optionOfButton(QAbstractButton& button)
{
    return static_cast<CaptureOption>(window().optionButtons().id(&button));
}

void CapturePreferencesController::setOption(QAbstractButton& sender)
{
    for (FileCapturePreferences& each : m_loaded.prefs.all())
        each.option = optionOfButton(sender);
    updateViewAndMakeDirty();
}

void CapturePreferencesController::setAllArchives(const MixedCheckBox& sender)
{
    setOnPrefs(kExcludingOptions, &FileCapturePreferences::allArchives, sender.state() != ButtonState::Off);
}

void CapturePreferencesController::setIgnoreDuration(const DurationField& sender)
{
    setOnPrefs(kIgnoringOptions, &FileCapturePreferences::ignoreDuration, sender.value().value_or(0));
}

void CapturePreferencesController::setIgnoreScale(const QComboBox& sender)
{
    setOnPrefs(kIgnoringOptions, &FileCapturePreferences::ignoreScale, selectedTag(sender));
}

void CapturePreferencesController::setIgnoreBetween(const MixedCheckBox& sender)
{
    setOnPrefs(kIgnoringOptions, &FileCapturePreferences::ignoreBetween, sender.state() != ButtonState::Off);
}

void CapturePreferencesController::setIgnoreFromTime(const QTimeEdit& sender)
{
    setOnPrefs(kIgnoringOptions, &FileCapturePreferences::ignoreFromMinute, selectedMinute(sender));
}

void CapturePreferencesController::setIgnoreToTime(const QTimeEdit& sender)
{
    setOnPrefs(kIgnoringOptions, &FileCapturePreferences::ignoreToMinute, selectedMinute(sender));
}

void CapturePreferencesController::setScrapeImmediately(const QAbstractButton& /*sender*/)
{
    setOnPrefs(kScrapingOptions, &FileCapturePreferences::scrapeImmediately, true);
}

void CapturePreferencesController::setScrapeAfter(const QAbstractButton& /*sender*/)
{
    setOnPrefs(kScrapingOptions, &FileCapturePreferences::scrapeImmediately, false);
}

void CapturePreferencesController::setScrapeDuration(const DurationField& sender)
{
    setOnPrefs(kScrapingOptions, &FileCapturePreferences::scrapeDuration, sender.value().value_or(0));
}

void CapturePreferencesController::setScrapeScale(const QComboBox& sender)
{
    setOnPrefs(kScrapingOptions, &FileCapturePreferences::scrapeScale, selectedTag(sender));
}

void CapturePreferencesController::openHelp()
{
    help_pages::openAt(kHelpAnchor);
}

} // namespace havrel
