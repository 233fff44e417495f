// SPDX-License-Identifier: MIT
// Tests of windows share one application object. Without a display of the caller's choice they run offscreen.
#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_LOGGING_TO_CONSOLE", "1"); // else the toolkit writes to a journal where there is one
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
