// SPDX-License-Identifier: MIT
#include "foundation/deallocator.h"

#include "foundation/notification_center.h"
#include "foundation/observing.h"
#include "tests/foundation/observed_book.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace havrel {
namespace {

TEST(MTKDeallocator, RunsEachCallbackOnceInOrderWithTheOwner)
{
    QObject owner;
    MTKDeallocator deallocator(&owner);
    std::vector<std::pair<int, QObject*>> calls;
    deallocator.addCallback([&calls](QObject* of) { calls.emplace_back(1, of); });
    deallocator.addCallback(nullptr);
    deallocator.addCallback([&calls](QObject* of) { calls.emplace_back(2, of); });

    deallocator.invokeCallbacks();
    deallocator.invokeCallbacks();

    EXPECT_EQ(calls, (std::vector<std::pair<int, QObject*>>{{1, &owner}, {2, &owner}}));
}

TEST(MTKDeallocator, RunsWhatIsLeftWhenItGoesItself)
{
    int calls = 0;
    {
        MTKDeallocator deallocator(nullptr);
        deallocator.addCallback([&calls](QObject*) { ++calls; });
    }

    EXPECT_EQ(calls, 1);
}

TEST(MTKDeallocator, EmptiesTheListBeforeTheCallbacksRun)
{
    MTKDeallocator deallocator(nullptr);
    int calls = 0;
    deallocator.addCallback([&](QObject*) {
        ++calls;
        deallocator.invokeCallbacks();
    });

    deallocator.invokeCallbacks();

    EXPECT_EQ(calls, 1);
}

TEST(MTKDeallocator, GoesOnAfterACallbackThatThrows)
{
    MTKDeallocator deallocator(nullptr);
    int calls = 0;
    deallocator.addCallback([](QObject*) { throw std::runtime_error("refused"); });
    deallocator.addCallback([&calls](QObject*) { ++calls; });

    EXPECT_NO_THROW(deallocator.invokeCallbacks());

    EXPECT_EQ(calls, 1);
}

template<class Object>
class DeallocationCallbacks : public ::testing::Test
{
};

using Objects = ::testing::Types<ObservedBook, QObject>;
TYPED_TEST_SUITE(DeallocationCallbacks, Objects);

TYPED_TEST(DeallocationCallbacks, RunWhenTheObjectDies)
{
    auto object = std::make_unique<TypeParam>();
    const QObject* const address = object.get();
    std::vector<QObject*> dead;
    mtk_addDeallocationCallback(*object, [&dead](QObject* dying) { dead.push_back(dying); });
    mtk_addDeallocationCallback(*object, nullptr);
    mtk_addDeallocationCallback(*object, [&dead](QObject* dying) { dead.push_back(dying); });
    EXPECT_TRUE(dead.empty());

    object.reset();

    ASSERT_EQ(dead.size(), 2U);
    EXPECT_EQ(dead[0], address);
    EXPECT_EQ(dead[1], address);
}

TYPED_TEST(DeallocationCallbacks, RunWhenNoBlockReachesTheObjectAnyMore)
{
    const QString didOpen = QStringLiteral("LibraryDidOpen");
    ObservedBook book;
    auto owner = std::make_unique<TypeParam>();
    int callbacks = 0;
    int told = 0;
    mtk_addDeallocationCallback(*owner, [&](QObject*) {
        ++callbacks;
        book.setPages(1);
        NotificationCenter::defaultCenter().post(didOpen);
    });
    observeObject({*owner, book}, "pages", ObservationOptions::NoInitialCall, [&told](auto&&...) { ++told; });
    observeNotification(*owner, didOpen, [&told](auto&&...) { ++told; });

    owner.reset();

    EXPECT_EQ(callbacks, 1);
    EXPECT_EQ(told, 0);
}

TEST(DyingObservable, IsNotReachedThroughAKeyPathOfItsOwn)
{
    ObservedBook sequel;
    auto book = std::make_unique<ObservedBook>();
    book->setSequel(&sequel);
    int callbacks = 0;
    int told = 0;
    mtk_addDeallocationCallback(*book, [&](QObject*) {
        ++callbacks;
        sequel.setPages(1);
    });
    observeProperty(*book, "sequel.pages", ObservationOptions::NoInitialCall, [&told](auto&&...) { ++told; });

    book.reset();

    EXPECT_EQ(callbacks, 1);
    EXPECT_EQ(told, 0);
}

TEST(DyingObservable, IsNotReachedByWhatItsBlocksHeld)
{
    const QString didOpen = QStringLiteral("LibraryDidOpen");
    auto owner = std::make_unique<ObservedBook>();
    int posts = 0;
    int told = 0;
    for (int i = 0; i < 2; ++i) {
        const std::shared_ptr<void> posting(nullptr, [&posts, didOpen](void*) {
            ++posts;
            NotificationCenter::defaultCenter().post(didOpen);
        });
        observeNotification(*owner, didOpen, [&told, posting](auto&&...) { ++told; });
    }

    owner.reset();

    EXPECT_EQ(posts, 2);
    EXPECT_EQ(told, 0);
}

TYPED_TEST(DeallocationCallbacks, AreAskedForOnceHoweverOftenOneAsks)
{
    auto object = std::make_unique<TypeParam>();
    int calls = 0;
    swizzleDeallocIfNeeded(*object);
    mtk_addDeallocationCallback(*object, [&calls](QObject*) { ++calls; });
    swizzleDeallocIfNeeded(*object);

    object.reset();

    EXPECT_EQ(calls, 1);
}

TYPED_TEST(DeallocationCallbacks, MayBeAddedFromSeveralThreads)
{
    constexpr int kThreads = 4;
    constexpr int kEach = 200;
    std::atomic<int> calls = 0;
    {
        TypeParam object;
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([&] {
                for (int j = 0; j < kEach; ++j)
                    mtk_addDeallocationCallback(object, [&calls](QObject*) { ++calls; });
            });
        for (std::thread& thread : threads)
            thread.join();
    }

    EXPECT_EQ(calls, kThreads * kEach);
}

TYPED_TEST(DeallocationCallbacks, DoNotReachALaterObjectAtTheSameAddress)
{
    alignas(TypeParam) std::array<std::byte, sizeof(TypeParam)> place;
    int calls = 0;
    auto* first = new (place.data()) TypeParam;
    mtk_addDeallocationCallback(*first, [&calls](QObject*) { ++calls; });
    first->~TypeParam();
    auto* second = new (place.data()) TypeParam;
    second->~TypeParam();

    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace havrel
