// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/alert.h"

#include "tests/support/shown_window.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using Buttons = QList<std::optional<QString>>;

Alert alertWith(const Buttons& buttons)
{
    return {.style = AlertStyle::Informational,
            .messageText = QStringLiteral("<b>message</b>"),
            .informativeText = QStringLiteral("<i>more</i>"),
            .buttons = buttons};
}

/// Runs the alert and does \p act with it when it is shown.
int answerAfter(const Alert& alert, const std::function<void(QMessageBox&)>& act)
{
    QTimer::singleShot(0, [&act] { act(*shownWindow<QMessageBox>()); });
    return WidgetAlertPresenter().runModal(alert);
}

void press(QMessageBox& box, const char* title)
{
    for (QAbstractButton* each : box.buttons())
        if (each->text() == QLatin1String(title))
            each->click();
}

TEST(Alert, AnswersThePlaceOfTheButton)
{
    struct Row
    {
        Buttons buttons;
        const char* pressed;
        int answer;
    };
    const QString launch = QStringLiteral("Launch");
    const QString cancel = QStringLiteral("Cancel");
    const Row rows[] = {
        {{}, "OK", 1000},
        {{launch, cancel}, "Launch", 1000},
        {{launch, cancel}, "Cancel", 1001},
        {{launch, std::nullopt}, "Launch", 1000},
        {{std::nullopt, cancel}, "Cancel", 1001},
    };
    for (const Row& row : rows)
        EXPECT_EQ(answerAfter(alertWith(row.buttons), [&row](QMessageBox& box) { press(box, row.pressed); }),
                  row.answer)
            << row.pressed;
}

TEST(Alert, IsAnsweredWithTheLastButtonByEscape)
{
    const auto escape = [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); };
    EXPECT_EQ(answerAfter(alertWith({QStringLiteral("a"), QStringLiteral("b")}), escape), 1001);
    EXPECT_EQ(answerAfter(alertWith({QStringLiteral("a"), std::nullopt}), escape), 1000);
}

TEST(Alert, ShowsItsTextsAsTheyAre)
{
    answerAfter(alertWith({}), [](QMessageBox& box) {
        EXPECT_EQ(box.text(), QStringLiteral("<b>message</b>"));
        EXPECT_EQ(box.informativeText(), QStringLiteral("<i>more</i>"));
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.icon(), QMessageBox::Information);
        EXPECT_EQ(box.buttons().size(), 1);
        press(box, "OK");
    });
}

TEST(Alert, IsASheetOnAWindow)
{
    QWidget window;
    window.show();
    std::optional<int> answer;
    WidgetAlertPresenter().beginSheet(alertWith({}), window, [&answer](int given) { answer = given; });
    EXPECT_FALSE(answer);
    auto* box = shownWindow<QMessageBox>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    EXPECT_EQ(box->parentWidget(), &window);
    press(*box, "OK");
    EXPECT_EQ(answer, kAlertFirstButtonReturn);
}

TEST(Alert, DiesWithItsWindowWithoutAnAnswer)
{
    bool answered = false;
    {
        QWidget window;
        window.show();
        WidgetAlertPresenter().beginSheet(alertWith({}), window, [&answered](int) { answered = true; });
        ASSERT_NE(shownWindow<QMessageBox>(), nullptr);
    }
    EXPECT_FALSE(answered);
}

} // namespace
} // namespace havrel::tests
