// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractSpinBox>

#include <optional>

namespace havrel {

/// A field for a count of time units, from 0 on, that can be empty where several items have different ones.
///
/// What is typed counts when editing ends (Return, another control), a step of the arrows at once. Setting the value
/// tells nobody.
///
/// Threads: the main thread only.
class DurationField : public QAbstractSpinBox
{
    Q_OBJECT

public:
    explicit DurationField(QWidget* parent = nullptr);

    /// None for an empty field; what was stored may be below 0 or beyond what can be typed.
    [[nodiscard]] std::optional<qint64> value() const;
    void setValue(const std::optional<qint64>& value);

    /// Ends editing: what was typed and not yet told is told now.
    void commit();

    [[nodiscard]] QValidator::State validate(QString& input, int& position) const override;
    void stepBy(int steps) override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user set another value.
    void valueEdited();

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override;

private:
    bool m_isEdited = false; // typed, and not yet told
};

} // namespace havrel
