// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/item_pass.h"

#include "capture_prefs_ui/timers.h"

#include <QCoreApplication>
#include <QProgressDialog>

#include <limits>

namespace havrel {
namespace {

using namespace std::chrono_literals;

/// People notice nothing before 200 ms; this leaves time to show the dialog.
constexpr auto kPatience = 150ms;
/// How long the windows may stand still once it is shown.
constexpr auto kSlice = 40ms;

std::unique_ptr<QProgressDialog> progressOf(const ItemPass& pass, QWidget& window)
{
    const int most = static_cast<int>(std::min<qsizetype>(pass.count, std::numeric_limits<int>::max()));
    auto dialog = std::make_unique<QProgressDialog>(
        pass.text, QCoreApplication::translate("ItemPass", "Stop"), 0, most, window.isVisible() ? &window : nullptr);
    dialog->setObjectName(QStringLiteral("passProgress"));
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->setMinimumDuration(0);
    dialog->setAutoReset(false);
    dialog->setAutoClose(false);
    dialog->show();
    return dialog;
}

/// Gives the windows a chance.
class Breathing
{
public:
    Breathing(const ItemPass& pass, QWidget& window, Timers& timers)
        : m_pass(pass)
        , m_window(window)
        , m_timers(timers)
        , m_last(timers.elapsed())
    {
    }

    /// \return whether the user lets the pass go on.
    bool goesOnAfter(qsizetype index)
    {
        if (m_timers.elapsed() - m_last < (m_dialog ? kSlice : kPatience))
            return true;
        if (!m_dialog)
            m_dialog = progressOf(m_pass, m_window);
        m_dialog->setValue(static_cast<int>(index + 1));
        QCoreApplication::processEvents();
        m_last = m_timers.elapsed();
        return !m_dialog->wasCanceled();
    }

private:
    const ItemPass& m_pass;
    QWidget& m_window;
    Timers& m_timers;
    std::chrono::milliseconds m_last;
    std::unique_ptr<QProgressDialog> m_dialog;
};

} // namespace

PassEnd runPass(const ItemPass& pass, QWidget& window, Timers& timers)
{
    Breathing breathing(pass, window, timers);
    for (qsizetype index = 0; index < pass.count; ++index) {
        if (!pass.perform(index))
            return PassEnd::Stopped;
        const bool isLast = index + 1 == pass.count;
        if (!isLast && !breathing.goesOnAfter(index))
            return PassEnd::Cancelled;
    }
    return PassEnd::Finished;
}

} // namespace havrel
