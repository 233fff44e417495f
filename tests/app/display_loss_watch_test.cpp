// SPDX-License-Identifier: MIT
#include "app/display_loss_watch.h"

#include <QLoggingCategory>
#include <QtGlobal>

#include <gtest/gtest.h>

#include <stdexcept>

namespace havrel::tests {
namespace {

TEST(DisplayLossWatch, HearsTheToolkitTell)
{
    const char* const told[] = {
        "The X11 connection broke (error 1). Did the X11 server die?",
        "The X11 connection broke: x (code 1)",
        "The Wayland connection broke. Did the Wayland compositor die?",
        "The Wayland connection experienced a fatal error: x",
    };
    int acted = 0;
    for (const char* each : told) {
        acted = 0;
        const DisplayLossWatch watch([&acted] { ++acted; });
        qWarning("The Wayland protocol is spoken");
        EXPECT_EQ(acted, 0);
        qWarning("%s", each);
        EXPECT_EQ(acted, 1) << each;
        qWarning("%s", each);
        EXPECT_EQ(acted, 1) << "twice";
    }
    qWarning("%s", told[0]);
    EXPECT_EQ(acted, 1) << "after its end";
}

TEST(DisplayLossWatch, HearsWhatLoggingRulesShutOut)
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    int acted = 0;
    {
        const DisplayLossWatch watch([&acted] { ++acted; });
        qWarning("The X11 connection broke (error 1). Did the X11 server die?");
    }
    QLoggingCategory::setFilterRules({});
    EXPECT_EQ(acted, 1);
}

TEST(DisplayLossWatch, LetsNothingOutOfTheToolkit)
{
    const DisplayLossWatch watch([] { throw std::runtime_error("x"); });
    EXPECT_NO_THROW(qWarning("The X11 connection broke"));
}

} // namespace
} // namespace havrel::tests
