// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/item_pass.h"

#include "tests/support/fake_timers.h"

#include <QApplication>
#include <QProgressDialog>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

class ItemPasses : public testing::Test
{
protected:
    /// Runs a pass whose items take \p item each.
    PassEnd run(qsizetype count, std::chrono::milliseconds item)
    {
        const ItemPass pass{.text = QStringLiteral("Counting..."), .count = count, .perform = [&](qsizetype /*index*/) {
                                m_timers.pass(item);
                                ++m_done;
                                return true;
                            }};
        return runPass(pass, m_window, m_timers);
    }

    FakeTimers m_timers;
    QWidget m_window;
    int m_done = 0;
};

TEST_F(ItemPasses, ServeEventsOftenEnoughForTheUser)
{
    std::vector<std::chrono::milliseconds> served{m_timers.elapsed()};
    QTimer always; // there is an event to handle at every moment
    QObject::connect(&always, &QTimer::timeout, &always, [&] { served.push_back(m_timers.elapsed()); });
    always.start(0);
    EXPECT_EQ(run(50, 60ms), PassEnd::Finished);
    served.push_back(m_timers.elapsed());
    EXPECT_EQ(m_done, 50);
    EXPECT_EQ(served.back() - served.front(), 50 * 60ms);
    for (std::size_t i = 1; i < served.size(); ++i)
        EXPECT_LE(served[i] - served[i - 1], 200ms) << "at " << served[i - 1].count();
}

TEST_F(ItemPasses, ShowNothingWhenTheyAreQuick)
{
    EXPECT_EQ(run(50, 1ms), PassEnd::Finished);
    EXPECT_EQ(m_window.findChild<QProgressDialog*>(), nullptr);
    bool isServed = false;
    QTimer::singleShot(0, &m_window, [&isServed] { isServed = true; });
    EXPECT_EQ(run(100, 1ms), PassEnd::Finished);
    EXPECT_FALSE(isServed) << "events that come meanwhile could change what is written";
}

TEST_F(ItemPasses, TellHowFarTheyAre)
{
    std::vector<int> shown;
    QTimer::singleShot(0, &m_window, [&] {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (const auto* dialog = qobject_cast<QProgressDialog*>(each); dialog && dialog->isVisible()) {
                EXPECT_EQ(dialog->labelText(), QStringLiteral("Counting..."));
                shown.push_back(dialog->value());
                shown.push_back(dialog->maximum());
            }
    });
    EXPECT_EQ(run(5, 160ms), PassEnd::Finished);
    EXPECT_EQ(shown, (std::vector<int>{1, 5}));
}

} // namespace
} // namespace havrel::tests
