// SPDX-License-Identifier: MIT
#include "foundation/property_access.h"

#include "diagnostics/exception.h"
#include "foundation/description.h"
#include "tests/foundation/observed_book.h"

#include <QPointer>
#include <QSharedPointer>

#include <gtest/gtest.h>

namespace havrel {
namespace {

TEST(PropertyAccess, ReadsOverObjects)
{
    ObservedBook book;
    ObservedBook sequel;
    book.setSequel(&sequel);
    sequel.setPrequel(std::make_shared<ObservedBook>());
    sequel.prequel()->setPages(9);

    EXPECT_EQ(valueAtKeyPath(book, "sequel.prequel.pages"), 9);
    EXPECT_FALSE(valueAtKeyPath(book, "sequel.sequel.pages").isValid());
    EXPECT_FALSE(valueAtKeyPath(book, "pages.title").isValid());
    EXPECT_THROW((void)valueAtKeyPath(book, "sequel.colour"), HVException);
    EXPECT_THROW((void)valueAtKeyPath(book, KeyPath::fromText(QStringView(u"pages\0", 6))), HVException);
}

TEST(PropertyAccess, ReadsNullsAsNil)
{
    ObservedBook book;
    book.setNote(nullObject());

    EXPECT_FALSE(valueAtKeyPath(book, "note").isValid());
    EXPECT_FALSE(valueAtKeyPath(book, "title").isValid());
    EXPECT_FALSE(valueAtKeyPath(book, "sequel").isValid());
    EXPECT_FALSE(valueAtKeyPath(book, "prequel").isValid());
    book.setTitle(QStringLiteral(""));
    EXPECT_EQ(valueAtKeyPath(book, "title"), QStringLiteral(""));
}

TEST(PropertyAccess, WritesOverObjects)
{
    ObservedBook book;
    ObservedBook sequel;
    setValueAtKeyPath(book, "sequel.pages", 1); // nothing there
    book.setSequel(&sequel);

    setValueAtKeyPath(book, "sequel.pages", 7);
    EXPECT_EQ(sequel.pages(), 7);
    setValueAtKeyPath(book, "sequel.pages", QVariant());

    EXPECT_EQ(sequel.pages(), 0);
}

TEST(PropertyAccess, SaysWhatCouldNotBeSet)
{
    ObservedBook book;
    try {
        setValueAtKeyPath(book, "marks", QStringLiteral("three"));
        FAIL() << "a text became a list";
    } catch (const HVException& exception) {
        EXPECT_EQ(exception.reason(), QStringLiteral("cannot set property"));
        EXPECT_EQ(exception.detail(QStringLiteral("Property")), QStringLiteral("marks"));
        EXPECT_EQ(exception.detail(QStringLiteral("Object")), QStringLiteral("three"));
    }
}

TEST(PropertyAccess, FindsTheObjectInAnyPointer)
{
    ObservedBook book;
    const auto shared = std::make_shared<ObservedBook>();
    const QSharedPointer<ObservedBook> toolkit(new ObservedBook);

    EXPECT_EQ(objectIn(QVariant::fromValue(&book)), &book);
    EXPECT_EQ(objectIn(QVariant::fromValue<QObject*>(&book)), &book);
    EXPECT_EQ(objectIn(QVariant::fromValue(QPointer<ObservedBook>(&book))), &book);
    EXPECT_EQ(objectIn(QVariant::fromValue(shared)), shared.get());
    EXPECT_EQ(objectIn(QVariant::fromValue(toolkit)), toolkit.data());
    EXPECT_EQ(objectIn(QVariant::fromValue<ObservedBook*>(nullptr)), nullptr);
    EXPECT_EQ(objectIn(QStringLiteral("text")), nullptr);
    EXPECT_EQ(objectIn({}), nullptr);
    EXPECT_EQ(objectIn(nullObject()), nullptr);
}

} // namespace
} // namespace havrel
