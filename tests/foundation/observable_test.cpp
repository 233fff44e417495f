// SPDX-License-Identifier: MIT
#include "foundation/observable.h"

#include "diagnostics/exception.h"
#include "foundation/observation_hub.h"
#include "foundation/observing.h"
#include "tests/foundation/observation_journal.h"
#include "tests/foundation/observed_book.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

struct EditCase
{
    const char* label;
    std::function<void(ObservedBook&)> edit;
};

class ObservableRefusedEdit : public ::testing::TestWithParam<EditCase>
{
};

TEST_P(ObservableRefusedEdit, ChangesNothing)
{
    ObservationJournal journal;
    ObservedBook book;
    book.setMarks({1, 2});
    observeRelationship(book, "marks", ObservationOptions::NoInitialCall, {.change = journal.block()});

    EXPECT_THROW(GetParam().edit(book), HVException);

    EXPECT_EQ(book.marks(), (QList<int>{1, 2}));
    EXPECT_EQ(journal.read(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Cases,
    ObservableRefusedEdit,
    ::testing::Values(EditCase{"inserts_beyond_the_end", [](auto& book) { book.insertMarks({3}, {3}); }},
                      EditCase{"inserts_with_a_gap",
                               [](auto& book) {
                                   book.insertMarks({3, 4}, {0, 4});
                               }},
                      EditCase{"inserts_without_an_index", [](auto& book) { book.insertMarks({3}, {}); }},
                      EditCase{"removes_beyond_the_end", [](auto& book) { book.removeMarks({2}); }},
                      EditCase{"replaces_beyond_the_end", [](auto& book) { book.replaceMarks({2}, {3}); }},
                      EditCase{"replaces_one_by_two",
                               [](auto& book) {
                                   book.replaceMarks({0}, {3, 4});
                               }},
                      EditCase{"has_a_huge_index", [](auto& book) { book.removeMarks({~0ULL}); }}),
    [](const auto& each) { return std::string(each.param.label); });

TEST(Observable, KeepsNoBooksWhileNobodyObserves)
{
    ObservedBook book;
    book.setPages(1);
    book.insertMarks({1, 2}, {0, 1});
    book.replaceMarks({0}, {3});
    book.removeMarks({1});

    EXPECT_EQ(book.marks(), QList<int>{3});
    EXPECT_EQ(ObservationHub::find(book), nullptr);
}

TEST(Observable, SaysNothingOfEditsWithoutElements)
{
    ObservationJournal journal;
    ObservedBook book;
    observeRelationship(book, "marks", ObservationOptions::NoInitialCall, {.change = journal.block()});

    book.insertMarks({}, {});
    book.removeMarks({});
    book.replaceMarks({}, {});

    EXPECT_EQ(journal.read(), "");
}

TEST(Observable, AppendsSeveralElementsAtOnce)
{
    ObservedBook book;
    book.setMarks({1});

    book.insertMarks({2, 3}, {1, 2});

    EXPECT_EQ(book.marks(), (QList<int>{1, 2, 3}));
}

TEST(Observable, ReportsAbsentElementsAsTheNullObject)
{
    EXPECT_EQ(observedValues(QList<QString>{QStringLiteral("a"), QString()}),
              (QVariantList{QStringLiteral("a"), nullObject()}));
}

TEST(Observable, ReportsAbsentValuesAsNil)
{
    EXPECT_FALSE(observedValue(QString()).isValid());
    EXPECT_FALSE(observedValue(std::optional<QString>()).isValid());
    EXPECT_FALSE(observedValue(std::shared_ptr<ObservedBook>()).isValid());
    EXPECT_FALSE(observedValue(static_cast<ObservedBook*>(nullptr)).isValid());
    EXPECT_EQ(observedValue(std::optional<QString>(QStringLiteral(""))), QVariant(QStringLiteral("")));
}

TEST(Observable, TellsAbsentValuesFromEmptyOnes)
{
    EXPECT_FALSE(areSameObserved(QString(), QStringLiteral("")));
    EXPECT_TRUE(areSameObserved(QString(), QString()));
    EXPECT_FALSE(areSameObserved(std::optional<QString>(), std::optional<QString>(QStringLiteral(""))));
    struct Incomparable
    {
    };
    EXPECT_FALSE(areSameObserved(Incomparable{}, Incomparable{}));
}

} // namespace
} // namespace havrel
