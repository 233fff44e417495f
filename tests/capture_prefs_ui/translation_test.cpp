// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/item_texts.h"
#include "capture_prefs_ui/status_line.h"
#include "tests/capture_prefs_ui/capture_preferences_fixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QTranslator>

namespace havrel::tests {
namespace {

void expectAccessKeysToDiffer(const QWidget& window)
{
    QStringList texts;
    for (const auto* each : window.findChildren<QAbstractButton*>())
        texts.append(each->text());
    for (const auto* each : window.findChildren<QLabel*>())
        if (each->buddy() != nullptr)
            texts.append(each->text());
    QStringList keys;
    for (const QString& each : texts)
        if (const qsizetype place = each.indexOf(u'&'); place >= 0)
            keys.append(each.mid(place + 1, 1).toLower());
    EXPECT_GE(keys.size(), 11);
    EXPECT_EQ(keys.removeDuplicates(), 0) << keys.join(u' ').toStdString();
}

class GermanWindow : public WithController
{
protected:
    void SetUp() override
    {
        WithController::SetUp();
        ASSERT_TRUE(m_translator.load(QStringLiteral(":/i18n/havrel_de.qm")));
        QCoreApplication::installTranslator(&m_translator);
    }
    void TearDown() override { QCoreApplication::removeTranslator(&m_translator); }

    QTranslator m_translator;
};

TEST_F(GermanWindow, SaysEverythingInGerman)
{
    ASSERT_TRUE(m_controller.prepareWithItems(urlsOf({"folder", "file"})));
    EXPECT_EQ(m_controller.window().windowTitle(), QStringLiteral("Sicherungseinstellungen: 2 Objekte"));
    EXPECT_EQ(control<QLabel>("itemPlaceField").text(), QStringLiteral("1 Ordner, 1 Datei"));
    EXPECT_EQ(control<QAbstractButton>("optionIgnoreButton").text(), QStringLiteral("Änderungen &ignorieren"));
    EXPECT_EQ(control<QComboBox>("ignoreScaleMenu").currentText(), QStringLiteral("Stunden"));
    EXPECT_EQ(control<StatusLine>("statusLine").text(), QStringLiteral("Gespeichert"));
}

TEST_F(GermanWindow, GivesEachControlAnAccessKeyOfItsOwn)
{
    expectAccessKeysToDiffer(m_controller.window());
}

using EnglishWindow = WithController;

TEST_F(EnglishWindow, GivesEachControlAnAccessKeyOfItsOwn)
{
    expectAccessKeysToDiffer(m_controller.window());
}

} // namespace
} // namespace havrel::tests
