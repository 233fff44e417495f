// SPDX-License-Identifier: MIT
#include "app/translations.h"

#include "app/havrel_services.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

TEST(InstalledTranslations, HoldAsLongAsTheyLive)
{
    {
        const InstalledTranslations translations(QLocale(QLocale::German, QLocale::Austria));
        EXPECT_EQ(HavrelServices::tr("Reveal %n items in:", nullptr, 2), QStringLiteral("2 Objekte zeigen in:"));
    }
    EXPECT_EQ(HavrelServices::tr("Reveal %n items in:", nullptr, 2), QStringLiteral("Reveal 2 items in:"));
}

TEST(InstalledTranslations, LeaveTextsOfOtherLanguagesInEnglish)
{
    for (const QLocale& each : {QLocale(QLocale::English), QLocale(QLocale::Welsh), QLocale::c()}) {
        const InstalledTranslations translations(each);
        EXPECT_EQ(HavrelServices::tr("Capture"), QStringLiteral("Capture"));
    }
}

} // namespace
} // namespace havrel::tests
