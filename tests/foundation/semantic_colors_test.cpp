// SPDX-License-Identifier: MIT
#include "foundation/semantic_colors.h"

#include "foundation/process.h"
#include "tests/support/fake_host.h"

#include <QGuiApplication>
#include <QPalette>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace havrel {
namespace {

/// An application on no display whose palette holds a colour of its own for every role.
class SemanticColors : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QGuiApplication>(m_argumentCount, m_arguments.data());
        QPalette palette;
        for (int role = 0; role < QPalette::NColorRoles; ++role)
            if (role != QPalette::NoRole)
                palette.setColor(QPalette::Active, QPalette::ColorRole(role), colorOf(role));
        QGuiApplication::setPalette(palette);
    }
    static QColor colorOf(int role) { return {10 * role, 200, 100}; }

private:
    int m_argumentCount = 1;
    std::array<char, 5> m_name{"test"};
    std::array<char*, 2> m_arguments{m_name.data(), nullptr};
    std::unique_ptr<QGuiApplication> m_application;
};

TEST_F(SemanticColors, AnswersTheFirstNameThatIsOffered)
{
    EXPECT_EQ(bestSemanticColor({u"noSuchColor", u"windowBackgroundColor", u"textColor"}), colorOf(QPalette::Window));
    EXPECT_EQ(bestSemanticColorList({u"noSuchColor"_qs, u"textColor"_qs, u"windowBackgroundColor"_qs}),
              colorOf(QPalette::Text));
}

TEST_F(SemanticColors, FallsBackToGray)
{
    EXPECT_EQ(bestSemanticColor({}), QColor(128, 128, 128));
    EXPECT_EQ(bestSemanticColor({u"noSuchColor", u"", {}, u"WindowBackgroundColor", u"windowBackgroundColo"}),
              QColor(128, 128, 128));
    EXPECT_EQ(bestSemanticColorList({}), QColor(128, 128, 128));
    EXPECT_EQ(bestSemanticColorList({u"noSuchColor"_qs, QString()}), QColor(128, 128, 128));
}

TEST_F(SemanticColors, FollowsThePalette)
{
    const QColor before = selectedBackgroundColor();
    QPalette other = QGuiApplication::palette();
    other.setColor(QPalette::Active, QPalette::Highlight, QColor(1, 2, 3));
    QGuiApplication::setPalette(other);

    EXPECT_EQ(before, colorOf(QPalette::Highlight));
    EXPECT_EQ(selectedBackgroundColor(), QColor(1, 2, 3));
}

TEST_F(SemanticColors, HasOneForEachPurpose)
{
    EXPECT_EQ(selectedBackgroundColor(), colorOf(QPalette::Highlight));
    EXPECT_EQ(progressBorderColor(), colorOf(QPalette::PlaceholderText));
    EXPECT_EQ(progressFillColor(), colorOf(QPalette::Highlight));
    EXPECT_EQ(searchProgressFillColor(), QColor(0xE0, 0x1B, 0x24));
    EXPECT_EQ(progressBackgroundColor(), colorOf(QPalette::Mid));
    EXPECT_EQ(frostableWindowBackgroundColor(), colorOf(QPalette::Window));
}

TEST_F(SemanticColors, PaintWindowsLightGrayBeforeTheReleaseThatBroughtTheirColor)
{
    {
        FakeHost host;
        host.name = "Named";
        host.kernel = "10.13.6";
        Process::captureNow();
        EXPECT_EQ(frostableWindowBackgroundColor(), QColor::fromRgbF(0.937F, 0.937F, 0.937F, 1.0F));
        host.kernel = "10.14.0";
        Process::captureNow();
        EXPECT_EQ(frostableWindowBackgroundColor(), colorOf(QPalette::Window));
    }
    Process::captureNow();
}

struct FixedCase
{
    const char* name;
    QRgb color;
};

TEST_F(SemanticColors, KnowsTheGraysWhateverThePalette)
{
    constexpr auto kGrays = std::to_array<FixedCase>({
        {"darkGrayColor", 0xFF555555},
        {"grayColor", 0xFF808080},
        {"lightGrayColor", 0xFFAAAAAA},
    });
    for (const FixedCase& each : kGrays)
        EXPECT_EQ(bestSemanticColorList({QString::fromLatin1(each.name)}).rgba(), each.color) << each.name;
}

} // namespace
} // namespace havrel
