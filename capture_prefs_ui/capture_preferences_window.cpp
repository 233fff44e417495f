// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/capture_preferences_window.h"

#include "capture_prefs_ui/calm_wheel.h"
#include "capture_prefs_ui/capture_preferences_view_state.h"
#include "capture_prefs_ui/item_icon.h"
#include "capture_prefs_ui/item_texts.h"
#include "capture_prefs_ui/leading_text.h"
#include "capture_prefs_ui/table_view.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QIcon>
#include <QShortcut>
#include <QSignalBlocker>

#include <utility>

#include <ui_CapturePreferencesWindow.h>

namespace havrel {
namespace {

constexpr int kIconSize = 48;

struct ScaleTitle
{
    DurationScale scale;
    const char* title;
};

/// The tags of the unit menus are the stored numbers.
constexpr ScaleTitle kScaleTitles[] = {
    {DurationScale::Minutes, QT_TRANSLATE_NOOP("havrel::CapturePreferencesWindow", "minutes")},
    {DurationScale::Hours, QT_TRANSLATE_NOOP("havrel::CapturePreferencesWindow", "hours")},
    {DurationScale::Days, QT_TRANSLATE_NOOP("havrel::CapturePreferencesWindow", "days")},
    {DurationScale::Weeks, QT_TRANSLATE_NOOP("havrel::CapturePreferencesWindow", "weeks")},
    {DurationScale::Months, QT_TRANSLATE_NOOP("havrel::CapturePreferencesWindow", "months")},
    {DurationScale::Years, QT_TRANSLATE_NOOP("havrel::CapturePreferencesWindow", "years")},
};

void showDuration(const DurationState& state, DurationField& field, QComboBox& menu)
{
    field.setEnabled(state.isEnabled);
    field.setValue(state.duration);
    menu.setEnabled(state.isEnabled);
    menu.setCurrentIndex(menu.findData(static_cast<uint>(state.scale)));
}

/// Hours and minutes as the user's locale has them; some locales' short format has seconds, which would say nothing.
QString timeFormat()
{
    const bool hasHalves = QLocale().timeFormat(QLocale::ShortFormat).contains(u'a', Qt::CaseInsensitive);
    return hasHalves ? QStringLiteral("h:mm AP") : QStringLiteral("HH:mm");
}

void showTime(QTimeEdit& picker, int minute)
{
    const QSignalBlocker quiet(picker);
    picker.setTime(QTime(minute / 60, minute % 60));
}

} // namespace

CapturePreferencesWindow::CapturePreferencesWindow()
    : m_ui(std::make_unique<Ui::CapturePreferencesWindow>())
    , m_optionButtons(new QButtonGroup(this))
    , m_scrapeButtons(new QButtonGroup(this))
{
    m_ui->setupUi(this);
    groupButtons();
    fillScaleMenus();
    calmWheels();
    addShortcuts();
    emphasizeName();
    m_ui->patternsTitleField->setBuddy(&m_ui->patternTable->tableView());
    for (QTimeEdit* each : {m_ui->ignoreFromPicker, m_ui->ignoreToPicker}) {
        // The toolkit would show the minutes first where texts go from right to left; no language writes times so.
        each->setLayoutDirection(Qt::LeftToRight);
        each->setDisplayFormat(timeFormat());
    }
    alignTexts();
}

CapturePreferencesWindow::~CapturePreferencesWindow() = default;

void CapturePreferencesWindow::groupButtons()
{
    const QList<QAbstractButton*> options{m_ui->optionNoneButton,
                                          m_ui->optionExcludeButton,
                                          m_ui->optionExcludeContentsButton,
                                          m_ui->optionIgnoreButton,
                                          m_ui->optionScrapeButton,
                                          m_ui->optionScrapeContentsButton};
    for (qsizetype option = 0; option < options.size(); ++option)
        m_optionButtons->addButton(options[option], static_cast<int>(option));
    m_scrapeButtons->addButton(m_ui->scrapeImmediatelyButton);
    m_scrapeButtons->addButton(m_ui->scrapeAfterButton);
}

void CapturePreferencesWindow::fillScaleMenus()
{
    for (QComboBox* menu : {m_ui->ignoreScaleMenu, m_ui->scrapeScaleMenu})
        for (const ScaleTitle& each : kScaleTitles)
            menu->addItem(tr(each.title), static_cast<uint>(each.scale));
}

void CapturePreferencesWindow::calmWheels()
{
    auto* calm = new CalmWheel(this);
    const QList<QWidget*> controls{m_ui->ignoreDurationField,
                                   m_ui->ignoreScaleMenu,
                                   m_ui->ignoreFromPicker,
                                   m_ui->ignoreToPicker,
                                   m_ui->scrapeDurationField,
                                   m_ui->scrapeScaleMenu};
    for (QWidget* each : controls) {
        each->setFocusPolicy(Qt::StrongFocus);
        each->installEventFilter(calm);
    }
}

void CapturePreferencesWindow::addShortcuts()
{
    const auto* close = new QShortcut(QKeySequence::Close, this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
}

void CapturePreferencesWindow::emphasizeName()
{
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * 1.25);
    larger.setBold(true);
    m_ui->itemNameField->setFont(larger);
    QFont title = font();
    title.setBold(true);
    m_ui->patternsTitleField->setFont(title);
}

void CapturePreferencesWindow::alignTexts()
{
    for (QLabel* each :
         std::initializer_list<QLabel*>{m_ui->itemNameField, m_ui->itemPlaceField, m_ui->patternsTitleField})
        alignAtLeadingEdge(*each);
}

void CapturePreferencesWindow::showItems(const LoadedItems& loaded)
{
    const QString name = item_texts::name(loaded);
    m_iconToShow = iconForItems(loaded);
    update();
    m_ui->itemNameField->setText(name);
    m_ui->itemPlaceField->setText(item_texts::place(loaded));
    m_ui->patternsTitleField->setText(item_texts::patternsTitle(loaded));
    setWindowTitle(tr("Capture Preferences of %1").arg(name));
}

void CapturePreferencesWindow::paintEvent(QPaintEvent* event)
{
    QWidget::paintEvent(event);
    if (m_iconToShow)
        QMetaObject::invokeMethod(this, &CapturePreferencesWindow::showIcon, Qt::QueuedConnection);
}

void CapturePreferencesWindow::showIcon()
{
    if (const auto icon = std::exchange(m_iconToShow, {}))
        m_ui->itemIconImage->setPixmap(icon().pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
}

void CapturePreferencesWindow::showState(const CapturePreferencesViewState& state)
{
    for (std::size_t option = 0; option < state.options.size(); ++option) {
        auto* button = static_cast<MixedRadioButton*>(m_optionButtons->button(static_cast<int>(option)));
        button->setState(state.options[option]);
    }
    m_ui->optionExcludeContentsButton->setEnabled(state.canTreatContents);
    m_ui->optionScrapeContentsButton->setEnabled(state.canTreatContents);
    m_ui->allArchivesButton->setEnabled(state.isExcluding);
    m_ui->allArchivesButton->setState(state.allArchives);
    showIgnoring(state);
    showScraping(state);
}

void CapturePreferencesWindow::showIgnoring(const CapturePreferencesViewState& state)
{
    const bool isIgnoring = state.ignoring.isEnabled;
    showDuration(state.ignoring, *m_ui->ignoreDurationField, *m_ui->ignoreScaleMenu);
    m_ui->ignoreDurationLabel->setEnabled(isIgnoring);
    m_ui->ignoreDurationEndLabel->setEnabled(isIgnoring);
    m_ui->ignoreBetweenButton->setEnabled(isIgnoring);
    m_ui->ignoreBetweenButton->setState(state.ignoreBetween);
    m_ui->ignoreBetweenLabel->setEnabled(isIgnoring);
    for (QTimeEdit* each : {m_ui->ignoreFromPicker, m_ui->ignoreToPicker})
        each->setEnabled(isIgnoring && state.canSetTimes);
    showTime(*m_ui->ignoreFromPicker, state.ignoreFromMinute);
    showTime(*m_ui->ignoreToPicker, state.ignoreToMinute);
}

void CapturePreferencesWindow::showScraping(const CapturePreferencesViewState& state)
{
    m_ui->scrapeImmediatelyButton->setEnabled(state.isScraping);
    m_ui->scrapeImmediatelyButton->setState(state.scrapeImmediately);
    m_ui->scrapeAfterButton->setEnabled(state.isScraping);
    m_ui->scrapeAfterButton->setState(state.scrapeAfter);
    m_ui->scrapeAfterLabel->setEnabled(state.isScraping); // it is the button's, and its letter
    showDuration(state.scraping, *m_ui->scrapeDurationField, *m_ui->scrapeScaleMenu);
}

void CapturePreferencesWindow::commitEditing()
{
    for (DurationField* each : {m_ui->ignoreDurationField, m_ui->scrapeDurationField})
        each->commit();
    for (QTimeEdit* each : {m_ui->ignoreFromPicker, m_ui->ignoreToPicker})
        each->interpretText();
    m_ui->patternTable->endEditing();
    // Whatever else is edited hears that it loses the focus.
    if (QWidget* editor = focusWidget())
        editor->clearFocus();
}

void CapturePreferencesWindow::closeEvent(QCloseEvent* event)
{
    Q_EMIT closing();
    event->accept();
}

void CapturePreferencesWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Cancel))
        close();
    else
        QWidget::keyPressEvent(event);
}

void CapturePreferencesWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        emphasizeName();
    if (event->type() == QEvent::LayoutDirectionChange)
        alignTexts();
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        Q_EMIT activated();
    QWidget::changeEvent(event);
}

} // namespace havrel
