// SPDX-License-Identifier: MIT
#include "foundation/selector.h"

#include "diagnostics/exception.h"
#include "foundation/observing.h"
#include "tests/foundation/observed_book.h"
#include "tests/foundation/observed_reader.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

constexpr auto kLater = ObservationOptions::NoInitialCall;

struct SelectorCase
{
    const char* label;
    Selector selector;
    const char* expected;
};

void PrintTo(const SelectorCase& each, std::ostream* out)
{
    *out << each.label;
}

class SelectorCalls : public ::testing::TestWithParam<SelectorCase>
{
};

TEST_P(SelectorCalls, TheMethodWithAsManyArgumentsAsItTakes)
{
    ObservedBook book;
    book.setObjectName(QStringLiteral("book"));
    ObservedReader reader;
    observeObject({reader, book}, "pages", kLater, GetParam().selector);

    book.setPages(7);

    EXPECT_EQ(reader.read(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases,
    SelectorCalls,
    ::testing::Values(
        SelectorCase{"name_without_arguments", Selector("turned"), "turned"},
        SelectorCase{"name_with_the_object", Selector("turnedIn"), "turnedIn book"},
        SelectorCase{"name_with_object_and_old", Selector("turnedFrom"), "turnedFrom book 0"},
        SelectorCase{"name_with_all", Selector("turnedFromTo"), "turnedFromTo book 0 7"},
        SelectorCase{"name_of_the_longest_overload", Selector("page"), "page book 0"},
        SelectorCase{"signature", Selector("page()"), "page"},
        SelectorCase{"name_with_converted_values", Selector("converted"), "converted book 0 7"},
        SelectorCase{"pointer_without_arguments", Selector(&ObservedReader::turned), "turned"},
        SelectorCase{"pointer_with_all", Selector(&ObservedReader::turnedFromTo), "turnedFromTo book 0 7"},
        SelectorCase{"pointer_with_converted_values", Selector(&ObservedReader::converted), "converted book 0 7"},
        SelectorCase{"pointer_to_a_const_method", Selector(&ObservedReader::noted), "noted book"}),
    [](const auto& each) { return std::string(each.param.label); });

class SelectorRefusal : public ::testing::TestWithParam<SelectorCase>
{
};

TEST_P(SelectorRefusal, SaysWhyAtRegistration)
{
    ObservedReader reader;
    ObservedBook book;
    try {
        observeObject({reader, book}, "pages", GetParam().selector);
        FAIL() << "took a selector that cannot be called";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.name(), exception_name::kBug);
        EXPECT_EQ(exception.reason().toStdString(), GetParam().expected);
        EXPECT_EQ(exception.detail(QStringLiteral("Class")), QStringLiteral("havrel::ObservedReader"));
    }
    book.setPages(7);
    EXPECT_EQ(reader.read(), "");
}

constexpr const char* kNoMethod = "WTF?! Method should have at least two arguments: self and _cmd!";
constexpr const char* kNotCallable = "selector cannot be called";

INSTANTIATE_TEST_SUITE_P(
    Cases,
    SelectorRefusal,
    ::testing::Values(SelectorCase{"unknown_name", Selector("vanished"), kNoMethod},
                      SelectorCase{"empty_name", Selector(""), kNoMethod},
                      SelectorCase{"a_signal", Selector("finished"), kNoMethod},
                      SelectorCase{
                          "null_pointer", Selector(static_cast<void (ObservedReader::*)()>(nullptr)), kNoMethod},
                      SelectorCase{"method_of_another_class", Selector(&ObservedBook::note), kNoMethod},
                      SelectorCase{"four_arguments", Selector("overloaded"), kNotCallable}),
    [](const auto& each) { return std::string(each.param.label); });

TEST(Selector, ServesEveryFormOfRegistration)
{
    ObservedReader reader;
    ObservedBook book;
    const Selector selector("turned");

    observeProperty(reader, "chapter", selector);
    EXPECT_EQ(reader.read(), "turned");
    observeProperty(reader, "chapter", kLater, selector);
    reader.setChapter(1);
    EXPECT_EQ(reader.read(), "turned; turned");
    removeAllObservations(reader);

    observeProperties(reader, {"chapter", "verse"}, selector);
    EXPECT_EQ(reader.read(), "turned; turned");
    observeProperties(reader, {"chapter", "verse"}, kLater, selector);
    reader.setVerse(1);
    EXPECT_EQ(reader.read(), "turned; turned");
    removeAllObservations(reader);

    observeObject({reader, book}, "pages", selector);
    EXPECT_EQ(reader.read(), "turned");
    observeObject({reader, book}, {"pages", "title"}, selector);
    EXPECT_EQ(reader.read(), "turned; turned");
    observeObject({reader, book}, {"pages", "title"}, kLater, selector);
    book.setPages(1);
    EXPECT_EQ(reader.read(), "turned; turned; turned");
}

TEST(Selector, GivesTheDefaultOfATypeThatTheValueDoesNotConvertTo)
{
    ObservedReader reader;
    ObservedBook book;
    observeObject({reader, book}, "title", kLater, Selector("converted"));

    book.setTitle(QStringLiteral("Tides"));

    EXPECT_EQ(reader.read(), "converted  0 0");
}

TEST(SelectorBlock, CallsNothingOnAnOwnerWhoseClassIsGone)
{
    ObservedReader reader;
    QObject rest;
    const SettingBlock block = Selector(&ObservedReader::turned).blockFor(reader);

    block(&rest, &rest, 0, 1);
    block(nullptr, &rest, 0, 1);
    EXPECT_EQ(reader.read(), "");
    block(&reader, &rest, 0, 1);

    EXPECT_EQ(reader.read(), "turned");
}

} // namespace
} // namespace havrel
