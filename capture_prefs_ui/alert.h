// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>

class QWidget;

namespace havrel {

/// \source the numbers are the platform's documented alert styles.
enum class AlertStyle {
    Warning = 0,
    Informational = 1,
};

/// What an alert says and asks.
struct Alert
{
    AlertStyle style = AlertStyle::Warning;
    QString messageText;
    QString informativeText;
    /// The titles, in order; the first is the default. None at all: one "OK". A button that has no title is not shown,
    /// but keeps its place in the numbering.
    QList<std::optional<QString>> buttons{};
};

/// The answer that the first button gives; each further button gives one more.
/// \source the platform's documented return codes.
inline constexpr int kAlertFirstButtonReturn = 1000;

/// Shows alerts. Programs use `WidgetAlertPresenter`; tests put one in its place that records and answers.
///
/// Threads: the main thread only.
class AlertPresenter
{
public:
    AlertPresenter() = default;
    virtual ~AlertPresenter();
    AlertPresenter(const AlertPresenter&) = delete;
    AlertPresenter& operator=(const AlertPresenter&) = delete;
    AlertPresenter(AlertPresenter&&) = delete;
    AlertPresenter& operator=(AlertPresenter&&) = delete;

    /// Shows the alert in a window of its own and blocks until it is answered; events are handled meanwhile.
    ///
    /// \return kAlertFirstButtonReturn plus the place of the chosen button. Closing the window, or Escape, chooses the
    ///         last button.
    [[nodiscard]] virtual int runModal(const Alert& alert) = 0;

    /// Shows the alert on \p window, which takes no input until it is answered, and answers at once. \p ended is told
    /// the answer, as of runModal; it is not called when the window dies first.
    virtual void beginSheet(const Alert& alert, QWidget& window, std::function<void(int answer)> ended) = 0;
};

/// Message boxes.
///
/// Threads: the main thread only.
class WidgetAlertPresenter final : public AlertPresenter
{
public:
    [[nodiscard]] int runModal(const Alert& alert) override;
    void beginSheet(const Alert& alert, QWidget& window, std::function<void(int answer)> ended) override;
};

} // namespace havrel
