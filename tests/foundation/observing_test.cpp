// SPDX-License-Identifier: MIT
#include "foundation/observing.h"

#include "diagnostics/exception.h"
#include "foundation/description.h"
#include "tests/foundation/observed_book.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

/// What a block was told, one line a call.
class Journal
{
public:
    [[nodiscard]] SettingBlock block(const QString& label = {})
    {
        return [this, label](QObject*, QObject*, const QVariant& before, const QVariant& now) {
            lines.push_back(label + descriptionOf(before) + QStringLiteral("->") + descriptionOf(now));
        };
    }

    QStringList lines;
};

TEST(Observing, CallsTheBlockAtOnceWithTheCurrentValueAsOldAndNew)
{
    ObservedBook book;
    book.setPages(3);
    Journal journal;

    observeProperty(book, "pages", journal.block());

    EXPECT_EQ(journal.lines, QStringList{QStringLiteral("3->3")});
}

TEST(Observing, LeavesTheFirstCallOutWhenToldTo)
{
    ObservedBook book;
    Journal journal;

    observeProperty(book, "pages", ObservationOptions::NoInitialCall, journal.block());
    EXPECT_TRUE(journal.lines.isEmpty());
    book.setPages(4);

    EXPECT_EQ(journal.lines, QStringList{QStringLiteral("0->4")});
}

TEST(Observing, IsSilentWhenAnEqualValueIsSet)
{
    ObservedBook book;
    book.setPages(4);
    book.setNote(1);
    Journal journal;
    observeProperties(book, {"pages", "note"}, ObservationOptions::NoInitialCall, journal.block());

    book.setPages(4);
    book.setNote(1.0);

    EXPECT_TRUE(journal.lines.isEmpty());
}

TEST(Observing, TellsAnAbsentTextFromAnEmptyOne)
{
    ObservedBook book;
    Journal journal;
    observeProperty(book, "title", ObservationOptions::NoInitialCall, journal.block());

    book.setTitle(QStringLiteral(""));
    book.setTitle(QString());

    EXPECT_EQ(journal.lines, (QStringList{QStringLiteral("(null)->"), QStringLiteral("->(null)")}));
}

TEST(Observing, WatchesEachKeyPathOfAList)
{
    ObservedBook book;
    Journal journal;
    observeProperties(book, {"title", "pages"}, journal.block());

    book.setTitle(QStringLiteral("Tides"));
    book.setPages(7);
    book.setSubtitle(QStringLiteral("unheard"));

    EXPECT_EQ(journal.lines,
              (QStringList{QStringLiteral("(null)->(null)"),
                           QStringLiteral("0->0"),
                           QStringLiteral("(null)->Tides"),
                           QStringLiteral("0->7")}));
}

TEST(Observing, SharesOneObserverAmongTheBlocksOfAnOwnerAndKeepsTheirOrder)
{
    ObservedBook book;
    Journal journal;
    observeProperty(book, "pages", ObservationOptions::NoInitialCall, journal.block(QStringLiteral("first ")));
    const auto observer = mtk_observerForKeyPath(book, "pages", book);
    observeProperty(book, "pages", ObservationOptions::NoInitialCall, journal.block(QStringLiteral("second ")));

    book.setPages(1);

    EXPECT_EQ(mtk_observerForKeyPath(book, "pages", book), observer);
    EXPECT_EQ(journal.lines, (QStringList{QStringLiteral("first 0->1"), QStringLiteral("second 0->1")}));
}

TEST(Observing, DeliversEveryChangeOfABlockThatSetsAgainTheInnerFirst)
{
    ObservedBook book;
    Journal journal;
    observeProperty(book,
                    "pages",
                    ObservationOptions::NoInitialCall,
                    [](QObject* owner, QObject* /*object*/, const QVariant& /*before*/, const QVariant& now) {
                        if (now == 1)
                            qobject_cast<ObservedBook*>(owner)->setPages(2);
                    });
    observeProperty(book, "pages", ObservationOptions::NoInitialCall, journal.block());

    book.setPages(1);

    EXPECT_EQ(journal.lines, (QStringList{QStringLiteral("1->2"), QStringLiteral("0->1")}));
    EXPECT_EQ(book.pages(), 2);
}

TEST(Observing, RunsNoFurtherBlockOnceOneHasDeletedTheTarget)
{
    auto* book = std::make_unique<ObservedBook>().release();
    Journal journal;
    const auto deleting = [](QObject* owner, QObject*, const QVariant&, const QVariant&) { delete owner; };
    observeProperty(*book, "pages", ObservationOptions::NoInitialCall, deleting);
    observeProperty(*book, "pages", ObservationOptions::NoInitialCall, journal.block());

    book->setPages(1);

    EXPECT_TRUE(journal.lines.isEmpty());
}

TEST(Observing, SurvivesABlockThatDeletesTheTargetAtItsFirstCall)
{
    auto* book = std::make_unique<ObservedBook>().release();
    int calls = 0;

    observeProperties(*book, {"pages", "title"}, [&calls](QObject* owner, QObject*, const QVariant&, const QVariant&) {
        ++calls;
        delete owner;
    });

    EXPECT_EQ(calls, 1);
}

TEST(Observing, RefusesAPropertyThatTheTargetDoesNotHave)
{
    ObservedBook book;
    try {
        observeProperty(book, "colour", [](auto&&...) {});
        FAIL() << "observed an unknown property";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.name(), exception_name::kBug);
        EXPECT_EQ(exception.reason(), QStringLiteral("unknown property"));
        EXPECT_EQ(exception.detail(QStringLiteral("Property")), QStringLiteral("colour"));
    }
}

} // namespace
} // namespace havrel
