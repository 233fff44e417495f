// SPDX-License-Identifier: MIT
#include "foundation/observer.h"

#include "tests/foundation/observation_fixture.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using Observer = ObservationFixture;

TEST_F(Observer, KnowsWhatItObservesForWhom)
{
    const auto observer = MTKObserver::withTarget(m_book, "pages", &m_owner);

    EXPECT_EQ(observer->target(), &m_book);
    EXPECT_EQ(observer->owner(), &m_owner);
    EXPECT_EQ(observer->keyPath(), KeyPath("pages"));
    EXPECT_FALSE(observer->attached());
}

TEST_F(Observer, HoldsTargetAndOwnerWeakly)
{
    auto book = std::make_unique<ObservedBook>();
    auto owner = std::make_unique<ObservedBook>();
    const auto observer = MTKObserver::withTarget(*book, "pages", owner.get());
    observer->attach();

    owner.reset();
    EXPECT_EQ(observer->owner(), nullptr);
    EXPECT_TRUE(observer->attached());
    book.reset();

    EXPECT_EQ(observer->target(), nullptr);
    EXPECT_FALSE(observer->attached());
    observer->attach();
    EXPECT_FALSE(observer->attached());
}

TEST_F(Observer, PassesNoOwnerOnceThatIsGone)
{
    auto owner = std::make_unique<ObservedBook>();
    const auto observer = MTKObserver::withTarget(m_book, "pages", owner.get());
    std::vector<QObject*> owners;
    observer->addSettingObservationBlock(
        [&owners](QObject* each, QObject*, const QVariant&, const QVariant&) { owners.push_back(each); });
    observer->attach();
    owner.reset();

    m_book.setPages(1);

    EXPECT_EQ(owners.back(), nullptr);
}

TEST_F(Observer, ListensOnlyWhileItIsAttached)
{
    const auto observer = MTKObserver::withTarget(m_book, "pages", nullptr);
    observer->attach();
    observer->addSettingObservationBlock(m_journal.block());

    m_book.setPages(1);
    observer->detach();
    m_book.setPages(2);
    observer->setAttached(true);
    m_book.setPages(3);

    EXPECT_EQ(m_journal.read(), "0->1; (null)->2; 2->3");
}

TEST_F(Observer, RegistersOnceHoweverOftenItIsAttached)
{
    const auto observer = MTKObserver::withTarget(m_book, "pages", nullptr);
    observer->attach();
    observer->attach();
    observer->addSettingObservationBlock(m_journal.block());

    m_book.setPages(1);
    EXPECT_EQ(m_journal.read(), "0->1");
    observer->detach();
    observer->detach();
    m_book.setPages(2);

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(Observer, TellsBlocksThatWereThereBeforeOfTheCurrentValueWhenItAttaches)
{
    m_book.setPages(3);
    const auto observer = MTKObserver::withTarget(m_book, "pages", nullptr);
    observer->addSettingObservationBlock(m_journal.block());

    observer->attach();

    EXPECT_EQ(m_journal.read(), "(null)->3");
}

TEST_F(Observer, IsKeptByTheTargetWhileItIsAttached)
{
    std::weak_ptr<MTKObserver> weak;
    {
        const auto observer = MTKObserver::withTarget(m_book, "pages", nullptr);
        observer->attach();
        weak = observer;
    }
    ASSERT_FALSE(weak.expired());

    weak.lock()->detach();

    EXPECT_TRUE(weak.expired());
}

class ObserverHandler : public ObservationFixture
{
protected:
    ObserverHandler()
    {
        m_observer->addSettingObservationBlock(m_journal.block(QStringLiteral("set ")));
        m_observer->addInsertionObservationBlock(m_journal.insertionBlock());
        m_observer->addRemovalObservationBlock(m_journal.removalBlock());
        m_observer->addReplacementObservationBlock(m_journal.replacementBlock());
    }

    void handle(const ObservedChange& change) { m_observer->observeValueForKeyPath("marks", &m_book, change); }

    std::shared_ptr<MTKObserver> m_observer = MTKObserver::withTarget(m_book, "marks", nullptr);
};

TEST_F(ObserverHandler, ChoosesTheBlocksByTheKindOfChange)
{
    handle({.kind = static_cast<ChangeKind>(1), .oldValue = 1, .newValue = 2});
    EXPECT_EQ(m_journal.read(), "set 1->2");
    handle({.kind = static_cast<ChangeKind>(2), .newValue = QVariantList{7}, .indexes = {4}});
    EXPECT_EQ(m_journal.read(), "insert (7) at { 4 }");
    handle({.kind = static_cast<ChangeKind>(3), .oldValue = QVariantList{7}, .indexes = {4}});
    EXPECT_EQ(m_journal.read(), "remove (7) at { 4 }");
    handle(
        {.kind = static_cast<ChangeKind>(4), .oldValue = QVariantList{7}, .newValue = QVariantList{7}, .indexes = {4}});
    EXPECT_EQ(m_journal.read(), "replace (7)->(7) at { 4 }");
}

TEST_F(ObserverHandler, CallsSettingBlocksOnlyWhenOldAndNewDiffer)
{
    handle({.oldValue = 1, .newValue = 1});
    handle({.oldValue = QStringLiteral("a"), .newValue = QStringLiteral("a")});
    handle({.oldValue = nullObject(), .newValue = {}});

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObserverHandler, IgnoresOtherObjectsAndKeyPathsAndChangesToCome)
{
    ObservedBook other;

    m_observer->observeValueForKeyPath("marks", &other, {.oldValue = 1, .newValue = 2});
    m_observer->observeValueForKeyPath("marks", nullptr, {.oldValue = 1, .newValue = 2});
    m_observer->observeValueForKeyPath("pages", &m_book, {.oldValue = 1, .newValue = 2});
    handle({.oldValue = 1, .newValue = 2, .isPrior = true});

    EXPECT_EQ(m_journal.read(), "");
}

TEST_F(ObserverHandler, TurnsNullObjectsIntoNil)
{
    handle({.oldValue = nullObject(), .newValue = 2});
    handle({.oldValue = 2, .newValue = nullObject()});

    EXPECT_EQ(m_journal.read(), "set (null)->2; set 2->(null)");
}

TEST_F(ObserverHandler, IgnoresEmptyBlocks)
{
    m_observer->addSettingObservationBlock(nullptr);
    m_observer->addInsertionObservationBlock(nullptr);
    m_observer->addRemovalObservationBlock(nullptr);
    m_observer->addReplacementObservationBlock(nullptr);

    handle({.oldValue = 1, .newValue = 2});

    EXPECT_EQ(m_journal.read(), "set 1->2");
    EXPECT_EQ(std::distance(m_observer->afterSettingBlocks().begin(), m_observer->afterSettingBlocks().end()), 1);
    EXPECT_EQ(std::next(m_observer->afterInsertionBlocks().begin()), m_observer->afterInsertionBlocks().end());
    EXPECT_EQ(std::next(m_observer->afterRemovalBlocks().begin()), m_observer->afterRemovalBlocks().end());
    EXPECT_EQ(std::next(m_observer->afterReplacementBlocks().begin()), m_observer->afterReplacementBlocks().end());
}

TEST_F(ObserverHandler, RunsEachListDirectly)
{
    m_observer->executeAfterSettingBlocks(1, 2);
    m_observer->executeAfterSettingBlocks(2, 2);
    m_observer->executeAfterInsertionBlocks(QVariantList{1}, {0});
    m_observer->executeAfterRemovalBlocks(QVariantList{1}, {0});
    m_observer->executeAfterReplacementBlocks(QVariantList{1}, QVariantList{2}, {0});

    EXPECT_EQ(m_journal.read(), "set 1->2; insert (1) at { 0 }; remove (1) at { 0 }; replace (1)->(2) at { 0 }");
}

} // namespace
} // namespace havrel
