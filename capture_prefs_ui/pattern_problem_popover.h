// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QPointer>

#include <memory>

class QLabel;

namespace Ui {
class PatternProblemPopover;
} // namespace Ui

namespace havrel {

/// Tells what is wrong with a pattern, in a small window that points at the field from below and does not take the
/// keyboard. It follows the field, is away while the field's window is not in front, and goes when the field does. What
/// it says is also the field's accessible description.
///
/// Threads: the main thread only.
class PatternProblemPopover : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(QString problemDescription READ problemDescription WRITE setProblemDescription)

public:
    explicit PatternProblemPopover(QWidget* parent = nullptr);
    ~PatternProblemPopover() override;
    PatternProblemPopover(const PatternProblemPopover&) = delete;
    PatternProblemPopover& operator=(const PatternProblemPopover&) = delete;
    PatternProblemPopover(PatternProblemPopover&&) = delete;
    PatternProblemPopover& operator=(PatternProblemPopover&&) = delete;

    [[nodiscard]] QString problemDescription() const; ///< \selector problemDescription
    void setProblemDescription(const QString& text);  ///< \selector setProblemDescription:
    [[nodiscard]] QLabel& descriptionLabel() const;   ///< \selector descriptionLabel

    /// Shows it below \p field, or above where there is no room below.
    void showRelativeTo(QWidget& field);
    void dismiss();
    [[nodiscard]] QWidget* field() const noexcept { return m_field; } ///< null while it is dismissed

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void watch();
    void unwatch();
    void place();
    void showIfFieldIsSeen();
    [[nodiscard]] QPolygon outline() const;

    std::unique_ptr<Ui::PatternProblemPopover> m_form;
    QPointer<QWidget> m_field;
    QList<QPointer<QWidget>> m_watched; // the field and all around it
    int m_arrowAt = 0;                  // x of its point
    bool m_isAbove = false;             // the field; then the arrow points down
};

} // namespace havrel
