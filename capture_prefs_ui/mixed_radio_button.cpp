// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/mixed_radio_button.h"

#include <QAccessibleWidget>
#include <QButtonGroup>
#include <QPainter>
#include <QStyleOptionButton>

#include <utility>

namespace havrel {
namespace {

/// The toolkit knows mixed check boxes only.
class AccessibleMixedRadioButton final : public QAccessibleWidget
{
public:
    explicit AccessibleMixedRadioButton(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::RadioButton)
    {
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        const QString given = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Name || !given.isEmpty())
            return given;
        return button().text().remove(u'&');
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = button().state() == ButtonState::On;
        state.checkStateMixed = button().state() == ButtonState::Mixed;
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        return button().isEnabled() ? QStringList{toggleAction(), setFocusAction()} : QStringList();
    }

    void doAction(const QString& name) override
    {
        if (name == toggleAction() || name == pressAction())
            button().click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    [[nodiscard]] MixedRadioButton& button() const { return *qobject_cast<MixedRadioButton*>(widget()); }
};

QAccessibleInterface* accessibleOf(const QString& className, QObject* object)
{
    auto* button =
        className == QLatin1StringView("havrel::MixedRadioButton") ? qobject_cast<MixedRadioButton*>(object) : nullptr;
    return button != nullptr ? new AccessibleMixedRadioButton(button) : nullptr; // the toolkit's registry owns it
}

} // namespace

MixedRadioButton::MixedRadioButton(QWidget* parent)
    : QRadioButton(parent)
{
    static const bool isInstalled = (QAccessible::installFactory(accessibleOf), true);
    Q_UNUSED(isInstalled);
    setAutoExclusive(false); // such a button could not be turned off
}

ButtonState MixedRadioButton::state() const noexcept
{
    if (m_isMixed)
        return ButtonState::Mixed;
    return isChecked() ? ButtonState::On : ButtonState::Off;
}

void MixedRadioButton::setState(ButtonState state)
{
    // An exclusive group refuses to have its one checked button unchecked.
    QButtonGroup* siblings = group();
    const bool isExclusive = siblings != nullptr && siblings->exclusive();
    if (isExclusive)
        siblings->setExclusive(false);
    const bool wasMixed = std::exchange(m_isMixed, state == ButtonState::Mixed);
    setChecked(state == ButtonState::On);
    if (isExclusive)
        siblings->setExclusive(true);
    if (wasMixed == m_isMixed)
        return;
    update();
    QAccessible::State changed;
    changed.checkStateMixed = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void MixedRadioButton::nextCheckState()
{
    m_isMixed = false;
    setChecked(true);
    update();
}

void MixedRadioButton::paintEvent(QPaintEvent* event)
{
    if (!m_isMixed) {
        QRadioButton::paintEvent(event);
        return;
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    option.state &= ~(QStyle::State_On | QStyle::State_Off);
    option.state |= QStyle::State_NoChange;
    QPainter painter(this);
    style()->drawControl(QStyle::CE_RadioButton, &option, &painter, this);
    paintDash(painter, option);
}

void MixedRadioButton::paintDash(QPainter& painter, const QStyleOptionButton& option) const
{
    const QRectF circle = style()->subElementRect(QStyle::SE_RadioButtonIndicator, &option, this);
    QRectF dash(0, 0, circle.width() / 2, qMax(2.0, circle.height() / 7));
    dash.moveCenter(circle.center());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(option.palette.color(QPalette::Text));
    painter.drawRoundedRect(dash, dash.height() / 2, dash.height() / 2);
}

} // namespace havrel
