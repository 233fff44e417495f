// SPDX-License-Identifier: MIT
#include "app/archive_picker_pane.h"

#include "capture_prefs_ui/height_constraint.h"
#include "capture_prefs_ui/leading_text.h"
#include "capture_prefs_ui/window_frames.h"

#include <QLayout>
#include <QScreen>
#include <QShortcut>
#include <QShowEvent>

#include <algorithm>

#include <ui_ArchivePickerPane.h>

namespace havrel {
namespace {

constexpr int kUsualCharacters = 80;     // of the usual size, that the window is wide at first
constexpr int kLeastCharacters = 48;     // when it is made small
constexpr int kLeastLines = 5;           // that can be seen of the list when the window is made small
constexpr double kMostOfTheScreen = 0.8; // of the height that the screen has for windows
constexpr double kTitleSize = 1.25;      // of the size of the other texts

/// In the file of frames: all pickers have one.
QString frameName()
{
    return QStringLiteral("ArchivePicker");
}

} // namespace

ArchivePickerPane::ArchivePickerPane()
    : m_ui(std::make_unique<Ui::ArchivePickerPane>())
{
    m_ui->setupUi(this);
    m_pickerViewController = std::make_unique<ArchivePickerViewController>(*m_ui->tableView, takeRowViews());
    m_pickerViewController->setHeightConstraint(
        std::make_unique<HeightConstraint>([this](int height) { fitTable(height); }));
    m_ui->tableView->setFocus();
    emphasizeTitle();
    alignAtLeadingEdge(*m_ui->titleField);
    const auto* close = new QShortcut(QKeySequence::Close, this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
}

ArchivePickerPane::~ArchivePickerPane() = default;

/// They are never on screen themselves, so they leave the window.
ArchivePickerViewController::RowViews ArchivePickerPane::takeRowViews()
{
    ArchivePickerViewController::RowViews views;
    for (QWidget* each : m_ui->rowViews->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        each->setParent(nullptr);
        for (auto* label : each->findChildren<QLabel*>())
            label->setForegroundRole(QPalette::Text);
        views.emplace(each->objectName(), each);
    }
    delete std::exchange(m_ui->rowViews, nullptr);
    return views;
}

void ArchivePickerPane::emphasizeTitle()
{
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * kTitleSize);
    larger.setBold(true);
    m_ui->titleField->setFont(larger);
    setMinimumWidth(fontMetrics().averageCharWidth() * kLeastCharacters);
}

void ArchivePickerPane::restoreFrame()
{
    m_hasFrame = window_frames::restore(*this, frameName());
}

void ArchivePickerPane::saveFrame() const
{
    window_frames::save(*this, frameName());
}

void ArchivePickerPane::sizeToFit()
{
    ensurePolished();
    const QSize hint = layout()->totalSizeHint();
    const int usual = std::max(hint.width(), kUsualCharacters * fontMetrics().averageCharWidth());
    if (!isMaximized())
        resize(m_hasFrame ? width() : usual, hint.height());
    layout()->invalidate(); // a window that is not on screen is laid out only when it must be
    layout()->activate();
    m_pickerViewController->resizeToRows();
}

/// The window grows with the list, as far as the screen has room; then the user may size both.
void ArchivePickerPane::fitTable(int height)
{
    QWidget& table = *m_ui->tableView;
    const int least = std::min(height, kLeastLines * table.fontMetrics().lineSpacing());
    table.setFixedHeight(least);
    layout()->activate(); // the window may then be as low as the list
    const int others = layout()->totalSizeHint().height() - least;
    const int fitting = std::clamp(height, least, std::max(least, roomForTable(others)));
    table.setMaximumHeight(QWIDGETSIZE_MAX);
    if (!isMaximized())
        growTo(others + fitting);
    layout()->activate();
}

/// A window that has its place is moved up where it would leave the screen.
void ArchivePickerPane::growTo(int height)
{
    resize(std::max(width(), layout()->totalSizeHint().width()), height);
    const QRect available = screen()->availableGeometry();
    const int tooLow = frameGeometry().bottom() - available.bottom();
    const int room = frameGeometry().top() - available.top();
    if (m_hasFrame && tooLow > 0 && room > 0) // not by move(), which would count a frame that is not there yet
        setGeometry(geometry().translated(0, -std::min(tooLow, room)));
}

int ArchivePickerPane::roomForTable(int others) const
{
    const int frame = frameGeometry().height() - geometry().height();
    return static_cast<int>(screen()->availableGeometry().height() * kMostOfTheScreen) - frame - others;
}

void ArchivePickerPane::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) // and not when it was only out of sight
        m_pickerViewController->viewWillAppear();
    QDialog::showEvent(event);
}

void ArchivePickerPane::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        emphasizeTitle();
    if (event->type() == QEvent::LayoutDirectionChange)
        alignAtLeadingEdge(*m_ui->titleField);
    QDialog::changeEvent(event);
}

} // namespace havrel
