// SPDX-License-Identifier: MIT
#include "foundation/dispatch.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace havrel {
namespace {

TEST(QueueReference, IsNoneOffEveryQueue)
{
    const QueueReference reference = QueueReference::current();

    EXPECT_TRUE(reference.isNone());
    EXPECT_FALSE(reference.isCurrent());
    EXPECT_FALSE(reference.async([] { FAIL() << "ran on no queue"; }));
}

TEST(QueueReference, LeadsBackToTheSerialQueueWhereItWasTaken)
{
    SerialQueue queue(QStringLiteral("test"));
    QueueReference reference;
    bool currentInside = false;
    queue.sync([&] {
        reference = QueueReference::current();
        currentInside = reference.isCurrent();
    });
    bool ranThere = false;

    EXPECT_TRUE(reference.async([&] { ranThere = queue.isCurrent(); }));
    queue.barrier();

    EXPECT_TRUE(currentInside);
    EXPECT_FALSE(reference.isCurrent());
    EXPECT_FALSE(reference.isNone());
    EXPECT_TRUE(ranThere);
}

TEST(QueueReference, RefusesBlocksOnceItsQueueHasEnded)
{
    QueueReference reference;
    {
        SerialQueue queue(QStringLiteral("test"));
        queue.sync([&] { reference = QueueReference::current(); });
    }

    EXPECT_FALSE(reference.async([] { FAIL() << "ran on an ended queue"; }));
    EXPECT_FALSE(reference.isCurrent());
}

TEST(QueueReference, NamesTheMainQueueOnTheThreadOfTheApplicationObject)
{
    int argc = 1;
    char name[] = "test";
    char* argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    const QueueReference reference = QueueReference::current();
    bool ran = false;
    bool currentElsewhere = true;

    std::thread([&] {
        currentElsewhere = reference.isCurrent();
        EXPECT_TRUE(reference.async([&ran] { ran = true; }));
    }).join();
    EXPECT_FALSE(ran);
    QCoreApplication::processEvents();

    EXPECT_TRUE(reference.isCurrent());
    EXPECT_FALSE(currentElsewhere);
    EXPECT_TRUE(ran);
}

TEST(SerialQueueEnd, RunsBlocksThatItsLastBlocksQueue)
{
    std::promise<void> ending;
    bool ran = false;
    {
        SerialQueue queue(QStringLiteral("test"));
        queue.async([&, waiting = ending.get_future().share()] {
            waiting.wait();
            queue.async([&ran] { ran = true; });
        });
        queue.async([] {});
        ending.set_value();
    }

    EXPECT_TRUE(ran);
}

} // namespace
} // namespace havrel
