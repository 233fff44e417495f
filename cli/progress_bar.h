// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <chrono>
#include <functional>

namespace havrel::cli {

/// A bar on standard error for work that lasts. Shows itself only on a terminal and only after a second, draws at most
/// ten times a second, and is gone when the work is done.
///
/// Threads: one thread at a time.
class ProgressBar
{
public:
    using Clock = std::chrono::steady_clock;

    /// \param now the clock.
    explicit ProgressBar(std::function<Clock::time_point()> now = Clock::now);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ProgressBar(ProgressBar&&) = delete;
    ProgressBar& operator=(ProgressBar&&) = delete;

    /// Cheap enough to be called for every folder. \param fraction 0 to 1 \param count of the items that were looked at
    void update(double fraction, qint64 count);
    /// Takes the bar away before something else is written to the terminal; it comes back by itself.
    void hide();

private:
    std::function<Clock::time_point()> m_now;
    bool m_wanted;
    bool m_shown = false;
    Clock::time_point m_next;
};

/// The bar's line, without the codes that place it: "[#####.....]  50%  1234 items", cut to \p columns.
///
/// Threads: any thread.
[[nodiscard]] QByteArray progressLine(double fraction, qint64 count, int columns);

} // namespace havrel::cli
