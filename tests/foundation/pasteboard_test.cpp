// SPDX-License-Identifier: MIT
#include "foundation/pasteboard.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

TEST(Pasteboard, GoesOverTheBusAndComesBack)
{
    const Pasteboard boards[] = {
        {},
        {{pasteboard::kUriList, QByteArray()}}, // empty is not absent
        {{pasteboard::kUriList, QByteArray("file:///a%FF\r\n")}, {pasteboard::kPlainText, QByteArray("\0\xff", 2)}},
    };
    for (const Pasteboard& each : boards)
        EXPECT_EQ(pasteboardOf(dictionaryOf(each)), each);
}

TEST(Pasteboard, HoldsNoBytesForWhatIsNone)
{
    EXPECT_EQ(pasteboardOf(QVariantMap{{QStringLiteral("a"), QVariantList{1}}}),
              (Pasteboard{{QStringLiteral("a"), QByteArray()}}));
}

} // namespace
} // namespace havrel
