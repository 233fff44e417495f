// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/duration_field.h"

#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>

#include <algorithm>
#include <utility>

namespace havrel {
namespace {

constexpr int kMostDigits = 6;
constexpr qint64 kMostTyped = 999'999;

} // namespace

DurationField::DurationField(QWidget* parent)
    : QAbstractSpinBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    lineEdit()->setAlignment(Qt::AlignRight);
    // The line edit's own mark does not outlive the spin box's reading of the text.
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] { m_isEdited = true; });
    connect(this, &QAbstractSpinBox::editingFinished, this, &DurationField::commit);
}

std::optional<qint64> DurationField::value() const
{
    bool isNumber = false;
    const qint64 value = text().toLongLong(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

void DurationField::setValue(const std::optional<qint64>& value)
{
    const QString shown = value ? QString::number(*value) : QString();
    if (shown != text())
        lineEdit()->setText(shown);
    m_isEdited = false;
}

void DurationField::commit()
{
    if (std::exchange(m_isEdited, false))
        Q_EMIT valueEdited();
}

QValidator::State DurationField::validate(QString& input, int& position) const
{
    Q_UNUSED(position);
    const bool isDigits =
        std::all_of(input.begin(), input.end(), [](QChar each) { return each >= u'0' && each <= u'9'; });
    return isDigits && input.size() <= kMostDigits ? QValidator::Acceptable : QValidator::Invalid;
}

void DurationField::stepBy(int steps)
{
    setValue(std::clamp<qint64>(value().value_or(0) + steps, 0, kMostTyped));
    selectAll();
    Q_EMIT valueEdited();
}

QAbstractSpinBox::StepEnabled DurationField::stepEnabled() const
{
    return value().value_or(0) > 0 ? StepUpEnabled | StepDownEnabled : StepUpEnabled;
}

QSize DurationField::sizeHint() const
{
    ensurePolished();
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const int width = fontMetrics().horizontalAdvance(QString(kMostDigits - 1, u'0'));
    const QSize contents(width, lineEdit()->sizeHint().height());
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, contents, this);
}

} // namespace havrel
