// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/calm_wheel.h"
#include "capture_prefs_ui/duration_field.h"
#include "capture_prefs_ui/mixed_check_box.h"
#include "capture_prefs_ui/mixed_radio_button.h"
#include "capture_prefs_ui/shortened_label.h"
#include "capture_prefs_ui/visible_indicators.h"

#include <QAccessible>
#include <QButtonGroup>
#include <QComboBox>
#include <QPainter>
#include <QSignalSpy>
#include <QStyleOption>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using enum ButtonState;

QImage pictureOf(QWidget& widget)
{
    widget.resize(widget.sizeHint());
    return widget.grab().toImage();
}

TEST(MixedRadioButton, LooksDifferentInEachState)
{
    MixedRadioButton button;
    button.setText(QStringLiteral("text"));
    const QImage off = pictureOf(button);
    button.setState(On);
    const QImage on = pictureOf(button);
    button.setState(Mixed);
    const QImage mixed = pictureOf(button);
    EXPECT_NE(off, on);
    EXPECT_NE(off, mixed);
    EXPECT_NE(on, mixed);
    button.setState(Off);
    EXPECT_EQ(pictureOf(button), off);
}

TEST(MixedRadioButton, IsTurnedOnByAClick)
{
    for (const ButtonState before : {Off, Mixed, On}) {
        MixedRadioButton button;
        button.setState(before);
        const QSignalSpy clicks(&button, &QAbstractButton::clicked);
        QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(5, button.height() / 2));
        EXPECT_EQ(button.state(), On);
        EXPECT_EQ(clicks.count(), 1);
    }
}

TEST(MixedRadioButton, CanBeOffWithAllOthersOfItsGroup)
{
    MixedRadioButton one;
    MixedRadioButton other;
    QButtonGroup group;
    group.addButton(&one);
    group.addButton(&other);
    const QSignalSpy clicks(&group, &QButtonGroup::buttonClicked);
    one.setState(On);
    other.setState(Off);
    one.setState(Mixed);
    other.setState(Mixed);
    EXPECT_EQ(one.state(), Mixed);
    EXPECT_EQ(other.state(), Mixed);
    one.setState(Off);
    EXPECT_EQ(one.state(), Off);
    EXPECT_TRUE(group.exclusive());
    EXPECT_EQ(clicks.count(), 0);
}

TEST(MixedRadioButton, TellsItsStateToAssistiveTechnology)
{
    MixedRadioButton button;
    button.setText(QStringLiteral("E&xclude"));
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&button);
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(told->role(), QAccessible::RadioButton);
    EXPECT_EQ(told->text(QAccessible::Name), QStringLiteral("Exclude"));
    struct Row
    {
        ButtonState state;
        bool isChecked;
        bool isMixed;
    };
    for (const Row& row : {Row{Off, false, false}, Row{On, true, false}, Row{Mixed, false, true}}) {
        button.setState(row.state);
        EXPECT_EQ(told->state().checked, row.isChecked);
        EXPECT_EQ(told->state().checkStateMixed, row.isMixed);
        EXPECT_TRUE(told->state().checkable);
    }
    told->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(button.state(), On);
    button.setAccessibleName(QStringLiteral("in other words"));
    EXPECT_EQ(told->text(QAccessible::Name), QStringLiteral("in other words"));
}

TEST(MixedCheckBox, GoesFromMixedToOnAndNeverBack)
{
    MixedCheckBox box;
    box.setState(Mixed);
    for (const ButtonState after : {On, Off, On, Off}) {
        box.click();
        EXPECT_EQ(box.state(), after);
    }
}

TEST(DurationField, TellsOnlyWhatTheUserDid)
{
    DurationField field;
    const QSignalSpy edits(&field, &DurationField::valueEdited);
    field.setValue(23);
    field.setValue(std::nullopt);
    field.setValue(5);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(edits.count(), 0);
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("42"));
    EXPECT_EQ(edits.count(), 0);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(edits.count(), 1);
    EXPECT_EQ(field.value(), 42);
    field.commit();
    EXPECT_EQ(edits.count(), 1) << "once";
}

TEST(DurationField, TakesDigitsOnly)
{
    DurationField field;
    QTest::keyClicks(&field, QStringLiteral("-1x2 3.4567890"));
    EXPECT_EQ(field.value(), 123456);
}

TEST(DurationField, ShowsWhateverIsStored)
{
    DurationField field;
    for (const qint64 each : {qint64(-7), qint64(0), std::numeric_limits<qint64>::max()}) {
        field.setValue(each);
        EXPECT_EQ(field.value(), each);
    }
}

TEST(DurationField, StepsFromNothingAndStopsAtZero)
{
    DurationField field;
    const QSignalSpy edits(&field, &DurationField::valueEdited);
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.value(), 1);
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_EQ(field.value(), 0);
    QTest::keyClick(&field, Qt::Key_Down);
    EXPECT_EQ(field.value(), 0);
    EXPECT_EQ(edits.count(), 2);
}

TEST(ShortenedLabel, GetsByWithAnyWidth)
{
    ShortenedLabel label;
    const QString name = QString(255, u'n');
    label.setText(name);
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
    EXPECT_LT(label.sizeHint().width(), 1000);
    label.resize(100, 20);
    EXPECT_EQ(label.text(), name);
    EXPECT_LT(label.fontMetrics().horizontalAdvance(label.shownText()), 101);
    EXPECT_TRUE(label.shownText().startsWith(u'n') && label.shownText().endsWith(u'n'))
        << label.shownText().toStdString();
    label.setElideMode(Qt::ElideRight);
    EXPECT_TRUE(label.shownText().endsWith(QChar(0x2026))) << label.shownText().toStdString();
}

TEST(ShortenedLabel, IsOneLineHighWhateverItSays)
{
    ShortenedLabel label;
    label.setText(QStringLiteral("short"));
    const QSize size = label.sizeHint();
    label.resize(size);
    EXPECT_EQ(label.shownText(), QStringLiteral("short"));
    label.setText(QStringLiteral("a\nb\nc"));
    EXPECT_EQ(label.sizeHint().height(), size.height());
}

/// How far the colours of a picture go apart.
int rangeOfBrightness(const QImage& picture)
{
    int least = 255;
    int most = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const int brightness = qGray(picture.pixel(x, y));
            least = std::min(least, brightness);
            most = std::max(most, brightness);
        }
    return most - least;
}

TEST(VisibleIndicators, GiveEmptyBoxesAnEdgeOnDarkWindows)
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(0x35, 0x35, 0x35));
    dark.setColor(QPalette::Base, QColor(0x2d, 0x2d, 0x2d));
    dark.setColor(QPalette::WindowText, Qt::white);
    VisibleIndicators style;
    for (const auto element : {QStyle::PE_IndicatorCheckBox, QStyle::PE_IndicatorRadioButton}) {
        QStyleOptionButton option;
        option.rect = QRect(2, 2, 13, 13);
        option.state = QStyle::State_Enabled | QStyle::State_Off;
        option.palette = dark;
        QImage picture(17, 17, QImage::Format_RGB32);
        picture.fill(dark.color(QPalette::Window));
        QPainter painter(&picture);
        style.drawPrimitive(element, &option, &painter, nullptr);
        EXPECT_GT(rangeOfBrightness(picture), 60) << element;
    }
}

TEST(CalmWheel, LeavesAControlAloneThatHasNotTheFocus)
{
    QComboBox menu;
    CalmWheel calm;
    menu.installEventFilter(&calm);
    menu.addItems({QStringLiteral("one"), QStringLiteral("two")});
    QWheelEvent down({5, 5}, {5, 5}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&menu, &down);
    EXPECT_EQ(menu.currentIndex(), 0);
    menu.show();
    menu.activateWindow();
    menu.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&menu] { return menu.hasFocus(); }));
    QCoreApplication::sendEvent(&menu, &down);
    EXPECT_EQ(menu.currentIndex(), 1);
}

} // namespace
} // namespace havrel::tests
