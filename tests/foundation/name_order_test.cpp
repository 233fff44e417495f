// SPDX-License-Identifier: MIT
#include "foundation/name_order.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

namespace havrel {
namespace {

TEST(NameOrder, SortsNamesAsAFileManagerShowsThem)
{
    QStringList names{u"file 10.txt"_qs,
                      u"File 2.txt"_qs,
                      u"README"_qs,
                      u"file 1.txt"_qs,
                      u"readme"_qs,
                      u"\u00C4pfel"_qs,
                      u"Zebra"_qs,
                      u"apfel"_qs,
                      u".hidden"_qs,
                      u"2025-01"_qs,
                      u"10"_qs};
    std::sort(
        names.begin(), names.end(), [](const QString& a, const QString& b) { return finderLikeCompare(a, b) < 0; });

    EXPECT_EQ(names,
              (QStringList{u".hidden"_qs,
                           u"10"_qs,
                           u"2025-01"_qs,
                           u"apfel"_qs,
                           u"\u00C4pfel"_qs,
                           u"file 1.txt"_qs,
                           u"File 2.txt"_qs,
                           u"file 10.txt"_qs,
                           u"readme"_qs,
                           u"README"_qs,
                           u"Zebra"_qs}));
}

TEST(NameOrder, CallsOnlyEqualNamesEqual)
{
    EXPECT_EQ(finderLikeCompare(u"a", u"a"), std::strong_ordering::equal);
    EXPECT_EQ(finderLikeCompare({}, u""), std::strong_ordering::equal);
    EXPECT_EQ(finderLikeCompare(u"a", u"A"), std::strong_ordering::less);
    EXPECT_EQ(finderLikeCompare(u"02", u"2"), std::strong_ordering::less);
}

} // namespace
} // namespace havrel
