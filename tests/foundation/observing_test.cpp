// SPDX-License-Identifier: MIT
#include "foundation/observing.h"

#include "diagnostics/exception.h"
#include "foundation/observation_hub.h"
#include "foundation/selector.h"
#include "tests/foundation/observation_fixture.h"

#include <gtest/gtest.h>

#include <thread>

namespace havrel {
namespace {

using Observing = ObservationFixture;
using ObservingRelationships = ObservationFixture;
using ObservingMaps = ObservationFixture;

TEST_F(Observing, CallsTheBlockAtOnceWithTheCurrentValueAsOldAndNew)
{
    m_book.setPages(3);

    observeProperty(m_book, "pages", m_journal.block());

    EXPECT_EQ(m_journal.read(), "3->3");
}

TEST_F(Observing, LeavesTheFirstCallOutWhenToldTo)
{
    observeProperty(m_book, "pages", kLater, m_journal.block());
    EXPECT_EQ(m_journal.read(), "");
    m_book.setPages(4);

    EXPECT_EQ(m_journal.read(), "0->4");
}

TEST_F(Observing, TellsABlockItsOwnerAndTheObject)
{
    std::vector<std::pair<QObject*, QObject*>> told;

    observeObject({m_owner, m_book}, "pages", [&told](QObject* to, QObject* of, const QVariant&, const QVariant&) {
        told.emplace_back(to, of);
    });
    m_book.setPages(1);

    EXPECT_EQ(told, (std::vector<std::pair<QObject*, QObject*>>{{&m_owner, &m_book}, {&m_owner, &m_book}}));
}

TEST_F(Observing, IsSilentWhenAnEqualValueIsSet)
{
    m_book.setPages(4);
    m_book.setNote(1);
    observeProperties(m_book, {"pages", "note"}, kLater, m_journal.block());

    m_book.setPages(4);
    m_book.setNote(1.0);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, TellsAnAbsentTextFromAnEmptyOne)
{
    observeProperty(m_book, "title", kLater, m_journal.block());

    m_book.setTitle(QStringLiteral(""));
    m_book.setTitle(QString());

    EXPECT_EQ(m_journal.read(), "(null)->; ->(null)");
}

TEST_F(Observing, TurnsTheNullObjectIntoNil)
{
    observeProperty(m_book, "note", m_journal.block());

    m_book.setNote(nullObject());
    m_book.setNote(1);
    m_book.setNote(nullObject());

    EXPECT_EQ(m_journal.read(), "(null)->(null); (null)->1; 1->(null)");
}

TEST_F(Observing, WatchesEachKeyPathOfAListWithAnObserverOfItsOwn)
{
    observeProperties(m_book, {"title", "pages"}, m_journal.block());
    EXPECT_EQ(m_journal.read(), "(null)->(null); 0->0");

    m_book.setTitle(QStringLiteral("Tides"));
    m_book.setPages(7);
    m_book.setSubtitle(QStringLiteral("unheard"));

    EXPECT_EQ(m_journal.read(), "(null)->Tides; 0->7");
    EXPECT_NE(mtk_observerForKeyPath(m_book, "title", m_book), mtk_observerForKeyPath(m_book, "pages", m_book));
}

TEST_F(Observing, WatchesSeveralKeyPathsOfAnotherObject)
{
    observeObject({m_owner, m_book}, {"title", "pages"}, m_journal.block());
    EXPECT_EQ(m_journal.read(), "(null)->(null); 0->0");
    observeObject({m_owner, m_book}, {"subtitle", "note"}, kLater, m_journal.block());

    m_book.setPages(7);
    m_book.setNote(1);
    m_owner.setPages(8);

    EXPECT_EQ(m_journal.read(), "0->7; (null)->1");
}

TEST_F(Observing, SharesOneObserverAmongTheBlocksOfAnOwnerAndKeepsTheirOrder)
{
    observeProperty(m_book, "pages", kLater, m_journal.block(QStringLiteral("first ")));
    const auto observer = mtk_observerForKeyPath(m_book, "pages", m_book);
    observeProperty(m_book, "pages", kLater, m_journal.block(QStringLiteral("second ")));

    m_book.setPages(1);

    EXPECT_EQ(mtk_observerForKeyPath(m_book, "pages", m_book), observer);
    EXPECT_EQ(m_journal.read(), "first 0->1; second 0->1");
}

TEST_F(Observing, KeepsTheObserversOfTwoOwnersApart)
{
    ObservedBook other;
    observeObject({m_owner, m_book}, "pages", kLater, m_journal.block(QStringLiteral("owner ")));
    observeObject({other, m_book}, "pages", kLater, m_journal.block(QStringLiteral("other ")));

    removeAllObservationsOfObject(m_owner, m_book);
    m_book.setPages(1);

    EXPECT_EQ(m_journal.read(), "other 0->1");
}

TEST_F(Observing, EndsWhenTheOwnerDiesBeforeTheTarget)
{
    {
        ObservedBook owner;
        observeObject({owner, m_book}, "pages", kLater, m_journal.block());
        m_book.setPages(1);
    }
    EXPECT_EQ(m_journal.read(), "0->1");

    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "");
    EXPECT_FALSE(ObservationHub::of(m_book).isObserved("pages"));
}

TEST_F(Observing, EndsWhenAnOwnerOfAForeignClassDies)
{
    {
        QObject owner;
        observeObject({owner, m_book}, "pages", kLater, m_journal.block());
    }

    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, LetsTheTargetGoBeforeTheOwner)
{
    {
        ObservedBook book;
        observeObject({m_owner, book}, "pages", m_journal.block());
    }

    EXPECT_TRUE(ObservationHub::of(m_owner).ownedObservers().empty());
    removeAllObservations(m_owner);
}

TEST_F(Observing, EndsAllThatAnOwnerHas)
{
    observeObject({m_owner, m_book}, {"pages", "title"}, kLater, m_journal.block());
    observeProperty(m_owner, "pages", kLater, m_journal.block());

    removeAllObservations(m_owner);
    m_book.setPages(1);
    m_owner.setPages(1);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, EndsTheObservationOfOneKeyPathOnly)
{
    observeObject({m_owner, m_book}, {"pages", "title"}, kLater, m_journal.block());

    removeObservationsOfObject(m_owner, m_book, "pages");
    removeObservationsOfObject(m_owner, m_book, "note");
    m_book.setPages(1);
    m_book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(m_journal.read(), "(null)->Tides");
}

TEST_F(Observing, CanEndFromTheObservedSideForOneOwner)
{
    observeObject({m_owner, m_book}, {"pages", "title", "note"}, kLater, m_journal.block());

    mtk_removeObservationsForOwner(m_book, m_owner, "pages");
    m_book.setPages(1);
    EXPECT_EQ(m_journal.read(), "");
    mtk_removeAllObservationsForOwner(m_book, m_owner);
    m_book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, CanEndEveryObservationOfAnObject)
{
    observeObject({m_owner, m_book}, "pages", kLater, m_journal.block());
    observeProperty(m_book, "pages", kLater, m_journal.block());

    ObservationHub::of(m_book).internalRemoveAllObservations();
    m_book.setPages(1);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, StartsAgainAfterItWasEnded)
{
    observeProperty(m_book, "pages", kLater, m_journal.block(QStringLiteral("old ")));
    removeAllObservations(m_book);
    observeProperty(m_book, "pages", kLater, m_journal.block(QStringLiteral("new ")));

    m_book.setPages(1);

    EXPECT_EQ(m_journal.read(), "new 0->1");
}

TEST_F(Observing, DeliversEveryChangeOfABlockThatSetsAgainTheInnerFirst)
{
    observeProperty(m_book, "pages", kLater, [](QObject* owner, QObject*, const QVariant&, const QVariant& now) {
        if (now == 1)
            qobject_cast<ObservedBook*>(owner)->setPages(2);
    });
    observeProperty(m_book, "pages", kLater, m_journal.block());

    m_book.setPages(1);

    EXPECT_EQ(m_journal.read(), "1->2; 0->1");
    EXPECT_EQ(m_book.pages(), 2);
}

TEST_F(Observing, DoesNotRunABlockThatWasAddedDuringTheChange)
{
    observeProperty(m_book, "pages", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant&) {
        observeProperty(m_book, "pages", kLater, m_journal.block());
    });

    m_book.setPages(1);
    EXPECT_EQ(m_journal.read(), "");
    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "1->2");
}

TEST_F(Observing, RunsTheBlocksOfTheChangeOnceMoreWhenOneOfThemRemovesTheObservation)
{
    observeProperty(m_book, "pages", kLater, [this](QObject*, QObject*, const QVariant&, const QVariant&) {
        removeAllObservations(m_book);
    });
    observeProperty(m_book, "pages", kLater, m_journal.block());

    m_book.setPages(1);
    EXPECT_EQ(m_journal.read(), "0->1");
    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, PassesAnObserverOverThatWasRemovedDuringTheChange)
{
    observeProperty(m_book, "pages", kLater, [&](QObject*, QObject*, const QVariant&, const QVariant&) {
        removeAllObservations(m_owner);
    });
    observeObject({m_owner, m_book}, "pages", kLater, m_journal.block());

    m_book.setPages(1);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, RunsNoFurtherBlockOnceOneHasDeletedTheTarget)
{
    auto* book = std::make_unique<ObservedBook>().release();
    ObservedBook other;
    observeProperty(
        *book, "pages", kLater, [](QObject* owner, QObject*, const QVariant&, const QVariant&) { delete owner; });
    observeProperty(*book, "pages", kLater, m_journal.block());
    observeObject({other, *book}, "pages", kLater, m_journal.block());

    book->setPages(1);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, RunsNoFurtherBlockOfAnOwnerThatOneHasDeleted)
{
    ObservedBook other;
    auto owner = std::make_unique<ObservedBook>();
    observeObject({*owner, m_book}, "pages", kLater, [&owner](QObject*, QObject*, const QVariant&, const QVariant&) {
        owner.reset();
    });
    observeObject({*owner, m_book}, "pages", kLater, m_journal.block(QStringLiteral("owner ")));
    observeObject({other, m_book}, "pages", kLater, m_journal.block(QStringLiteral("other ")));

    m_book.setPages(1);
    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "other 0->1; other 1->2");
}

TEST_F(Observing, SurvivesANestedChangeThatDeletesTheTarget)
{
    auto* book = std::make_unique<ObservedBook>().release();
    observeProperty(*book, "pages", kLater, [book](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now == 2)
            delete book;
        else
            book->setPages(2);
    });
    observeProperty(*book, "pages", kLater, m_journal.block());

    book->setPages(1);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observing, SurvivesABlockThatDeletesTheTargetAtItsFirstCall)
{
    auto* book = std::make_unique<ObservedBook>().release();
    int calls = 0;

    observeProperties(*book, {"pages", "title"}, [&calls](QObject* owner, QObject*, const QVariant&, const QVariant&) {
        ++calls;
        delete owner;
    });

    EXPECT_EQ(calls, 1);
}

TEST_F(Observing, LetsAnOwnerGoThatOnlyItsOwnBlocksHold)
{
    auto owner = std::make_shared<ObservedBook>();
    const std::weak_ptr<ObservedBook> gone = owner;
    observeProperty(*owner, "pages", [owner](QObject*, QObject*, const QVariant&, const QVariant&) {});
    observeObject({*owner, m_book}, "pages", [owner](QObject*, QObject*, const QVariant&, const QVariant&) {});
    ObservedBook& named = *std::exchange(owner, nullptr);
    ASSERT_FALSE(gone.expired());

    removeAllObservations(named);

    EXPECT_TRUE(gone.expired());
}

TEST_F(Observing, HandsOnWhatABlockThrowsAndStaysUsable)
{
    observeProperty(m_book, "pages", kLater, [](QObject*, QObject*, const QVariant&, const QVariant& now) {
        if (now == 1)
            throw std::runtime_error("refused");
    });
    observeProperty(m_book, "pages", kLater, m_journal.block());

    EXPECT_THROW(m_book.setPages(1), std::runtime_error);
    EXPECT_EQ(m_journal.read(), "");
    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "1->2");
}

TEST_F(Observing, RefusesAPropertyThatTheTargetDoesNotHave)
{
    try {
        observeProperty(m_book, "colour", [](auto&&...) {});
        FAIL() << "observed an unknown property";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.name(), exception_name::kBug);
        EXPECT_EQ(exception.reason(), QStringLiteral("unknown property"));
        EXPECT_EQ(exception.detail(QStringLiteral("Property")), QStringLiteral("colour"));
    }
    EXPECT_TRUE(ObservationHub::of(m_book).observers().empty());
}

TEST_F(Observing, WorksOnAnyThreadWithoutAnApplicationObject)
{
    std::thread([this] {
        ObservedBook book;
        ObservedBook owner;
        observeProperty(book, "pages", m_journal.block());
        observeObject({owner, book}, "title", kLater, m_journal.block());
        book.setPages(1);
        book.setTitle(QStringLiteral("Tides"));
    }).join();

    EXPECT_EQ(m_journal.read(), "0->0; 0->1; (null)->Tides");
}

TEST_F(ObservingRelationships, TellsEachKindOfChangeWithItsIndexes)
{
    observeRelationship(m_book,
                        "marks",
                        kLater,
                        {.change = m_journal.block(),
                         .insertion = m_journal.insertionBlock(),
                         .removal = m_journal.removalBlock(),
                         .replacement = m_journal.replacementBlock()});

    m_book.setMarks({1, 2, 3});
    EXPECT_EQ(m_journal.read(), "()->(1, 2, 3)");
    m_book.insertMarks({10, 20}, {0, 3});
    EXPECT_EQ(m_book.marks(), (QList<int>{10, 1, 2, 20, 3}));
    EXPECT_EQ(m_journal.read(), "insert (10, 20) at { 0, 3 }");
    m_book.removeMarks({1, 2});
    EXPECT_EQ(m_book.marks(), (QList<int>{10, 20, 3}));
    EXPECT_EQ(m_journal.read(), "remove (1, 2) at { 1-2 }");
    m_book.replaceMarks({0, 2}, {5, 3});
    EXPECT_EQ(m_book.marks(), (QList<int>{5, 20, 3}));
    EXPECT_EQ(m_journal.read(), "replace (10, 3)->(5, 3) at { 0, 2 }");
    m_book.setMarks({5, 20, 3});
    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObservingRelationships, CallsTheChangeBlockAtOnceUnlessToldNotTo)
{
    m_book.setMarks({1});

    observeRelationship(m_book, "marks", {.change = m_journal.block(), .insertion = m_journal.insertionBlock()});

    EXPECT_EQ(m_journal.read(), "(1)->(1)");
}

TEST_F(ObservingRelationships, FallsBackOnTheChangeBlockWithNilAndTheWholeValue)
{
    m_book.setMarks({1, 2});
    observeRelationship(m_book, "marks", kLater, {.change = m_journal.block(), .removal = m_journal.removalBlock()});

    m_book.insertMarks({3}, {2});
    EXPECT_EQ(m_journal.read(), "(null)->(1, 2, 3)");
    m_book.removeMarks({0});
    EXPECT_EQ(m_journal.read(), "remove (1) at { 0 }");
    m_book.replaceMarks({0}, {9});
    EXPECT_EQ(m_journal.read(), "(null)->(9, 3)");
}

TEST_F(ObservingRelationships, BringsEveryKindOfChangeToASingleBlock)
{
    observeRelationship(m_book, "marks", m_journal.block());
    EXPECT_EQ(m_journal.read(), "()->()");

    m_book.setMarks({1});
    m_book.insertMarks({2}, {1});
    m_book.replaceMarks({0}, {1}); // equal elements are replaced all the same
    m_book.removeMarks({0, 1});

    EXPECT_EQ(m_journal.read(), "()->(1); (null)->(1, 2); (null)->(1, 2); (null)->()");
}

TEST_F(ObservingRelationships, KeepsEditsFromThoseWhoObserveTheProperty)
{
    observeProperty(m_book, "marks", kLater, m_journal.block());

    m_book.insertMarks({1}, {0});
    m_book.removeMarks({0});

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObservingMaps, KeepsTheDestinationEqualToTheTransformedSource)
{
    m_book.setPages(2);
    map(m_book, "pages", "title", [](const QVariant& pages) { return QStringLiteral("%1 pp.").arg(pages.toInt()); });
    EXPECT_EQ(m_book.title(), QStringLiteral("2 pp."));

    m_book.setPages(3);

    EXPECT_EQ(m_book.title(), QStringLiteral("3 pp."));
}

TEST_F(ObservingMaps, CopiesTheSourceWithoutATransform)
{
    m_book.setTitle(QStringLiteral("Tides"));
    map(m_book, "title", "subtitle", nullptr);
    EXPECT_EQ(m_book.subtitle(), QStringLiteral("Tides"));

    m_book.setTitle({});

    EXPECT_TRUE(m_book.subtitle().isNull());
}

TEST_F(ObservingMaps, PutsTheSubstituteInThePlaceOfNil)
{
    mapNull(m_book, "title", "subtitle", QStringLiteral("untitled"));
    EXPECT_EQ(m_book.subtitle(), QStringLiteral("untitled"));

    m_book.setTitle(QStringLiteral("Tides"));
    EXPECT_EQ(m_book.subtitle(), QStringLiteral("Tides"));
    m_book.setTitle(QString());

    EXPECT_EQ(m_book.subtitle(), QStringLiteral("untitled"));
}

TEST_F(ObservingMaps, FollowsEditsOfAToManySource)
{
    map(m_book, "marks", "pages", [](const QVariant& marks) { return marks.toList().size(); });

    m_book.insertMarks({4, 5}, {0, 1});

    EXPECT_EQ(m_book.pages(), 2);
}

TEST_F(ObservingMaps, SettlesWhenTwoPropertiesAreMappedOntoEachOther)
{
    map(m_book, "title", "subtitle", nullptr);
    map(m_book, "subtitle", "title", nullptr);

    m_book.setSubtitle(QStringLiteral("Tides"));

    EXPECT_EQ(m_book.title(), QStringLiteral("Tides"));
}

TEST_F(ObservingMaps, LeadsTheDestinationOverObjects)
{
    ObservedBook sequel;
    map(m_book, "title", "sequel.title", nullptr); // nothing there yet
    m_book.setSequel(&sequel);

    m_book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(sequel.title(), QStringLiteral("Tides"));
}

TEST_F(ObservingMaps, ObservesNothingWhenTheDestinationCannotBeSet)
{
    EXPECT_THROW(map(m_book, "pages", "colour", nullptr), HVException);
    EXPECT_THROW(map(m_book, "pages", "edition", nullptr), HVException);

    EXPECT_FALSE(ObservationHub::of(m_book).isObserved("pages"));
}

} // namespace
} // namespace havrel
