// SPDX-License-Identifier: MIT
#include "cli/progress_bar.h"

#include "platform/terminal.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace havrel::cli {
namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr std::chrono::milliseconds kPause{100};

void writeNow(const QByteArray& text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stderr);
}

} // namespace

ProgressBar::ProgressBar(std::function<Clock::time_point()> now)
    : m_now(std::move(now))
    , m_wanted(platform::isTerminal(platform::StandardStream::Error) && qgetenv("TERM") != "dumb")
    , m_next(m_now() + kPatience)
{
}

ProgressBar::~ProgressBar()
{
    hide();
}

void ProgressBar::update(double fraction, qint64 count)
{
    if (!m_wanted || m_now() < m_next)
        return;
    const int columns = platform::terminalColumns(platform::StandardStream::Error);
    writeNow('\r' + progressLine(fraction, count, columns) + "\x1b[K");
    m_shown = true;
    m_next = m_now() + kPause;
}

void ProgressBar::hide()
{
    if (m_shown)
        writeNow("\r\x1b[K");
    m_shown = false;
}

QByteArray progressLine(double fraction, qint64 count, int columns)
{
    constexpr int kWidth = 30;
    const double whole = std::clamp(fraction, 0.0, 1.0);
    const auto filled = static_cast<qsizetype>(whole * kWidth);
    QByteArray line = '[' + QByteArray(filled, '#') + QByteArray(kWidth - filled, '.') + "] ";
    line += QByteArray::number(static_cast<int>(whole * 100)).rightJustified(3) + "%  ";
    line += QByteArray::number(count) + (count == 1 ? " item" : " items");
    return line.first(std::min<qsizetype>(line.size(), std::max(columns - 1, 0)));
}

} // namespace havrel::cli
