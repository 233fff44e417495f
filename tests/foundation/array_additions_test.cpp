// SPDX-License-Identifier: MIT
#include "foundation/array_additions.h"

#include "diagnostics/exception.h"
#include "foundation/description.h"
#include "foundation/index_set.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

template<class Call>
void expectRangeException(Call call, const char* reason)
{
    try {
        call();
        FAIL() << "accepted an index outside the array";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name().toStdString(), "NSRangeException");
        EXPECT_EQ(exception.reason().toStdString(), reason);
    }
}

TEST(ArrayAdditions, LeaveNilOut)
{
    EXPECT_EQ(arrayWithNonNilObjectsCount({QVariant(), 1, QVariant(), latin("a"), nullObject()}),
              (QVariantList{1, latin("a"), nullObject()}));
    EXPECT_TRUE(arrayWithNonNilObjectsCount({}).isEmpty());
}

TEST(ArrayAdditions, ReadTheNullObjectAsNil)
{
    const QVariantList list{nullObject(), 1, nullObject()};

    EXPECT_FALSE(objectOrNilAtIndex(list, 0).isValid());
    EXPECT_EQ(objectOrNilAtIndex(list, 1), QVariant(1));
    EXPECT_FALSE(firstObjectOrNil(list).isValid());
    EXPECT_FALSE(lastObjectOrNil(list).isValid());
    EXPECT_EQ(firstObjectOrNil({1, 2}), QVariant(1));
    EXPECT_EQ(lastObjectOrNil({1, 2}), QVariant(2));
}

TEST(ArrayAdditions, HaveNoFirstAndLastObjectWhenEmpty)
{
    EXPECT_FALSE(firstObjectOrNil({}).isValid());
    EXPECT_FALSE(lastObjectOrNil({}).isValid());
}

TEST(ArrayAdditions, RaiseForAnIndexOutside)
{
    QVariantList list{1, 2};

    expectRangeException([&] { (void)objectOrNilAtIndex(list, 2); }, "index 2 beyond bounds [0 .. 1]");
    expectRangeException([&] { (void)objectOrNilAtIndex(list, -1); }, "index -1 beyond bounds [0 .. 1]");
    expectRangeException([&] { (void)objectOrNilAtIndex({}, 0); }, "index 0 beyond bounds for empty array");
    expectRangeException([&] { insertObjectOrNil(list, 3, 3); }, "index 3 beyond bounds [0 .. 2]");
    expectRangeException([&] { replaceObjectAtIndex(list, 2, 3); }, "index 2 beyond bounds [0 .. 1]");
    EXPECT_EQ(list, (QVariantList{1, 2}));
}

TEST(ArrayAdditions, StoreTheNullObjectInPlaceOfNil)
{
    QVariantList list;
    addObjectOrNil(list, QVariant());
    addObjectOrNil(list, 1);
    insertObjectOrNil(list, QVariant(), 2);
    insertObjectOrNil(list, 0, 0);

    EXPECT_EQ(list, (QVariantList{0, nullObject(), 1, nullObject()}));

    replaceObjectAtIndex(list, 0, QVariant());
    replaceObjectAtIndex(list, 3, 9);

    EXPECT_EQ(list, (QVariantList{nullObject(), nullObject(), 1, 9}));
}

TEST(ArrayAdditions, AreIdenticalByIdentityAndNotByEquality)
{
    const QString text = latin("a text");
    const QString equalText = latin("a text");
    const auto shared = std::make_shared<int>(1);
    const auto equalShared = std::make_shared<int>(1);
    const auto withShared = [](const std::shared_ptr<int>& object) {
        return QVariantList{QVariant::fromValue(object)};
    };

    EXPECT_TRUE(isIdenticalToArray({text, 1, true}, {text, 1, true}));
    EXPECT_FALSE(isIdenticalToArray({text}, {equalText}));
    EXPECT_TRUE(isIdenticalToArray(withShared(shared), withShared(shared)));
    EXPECT_FALSE(isIdenticalToArray(withShared(shared), withShared(equalShared)));
    EXPECT_FALSE(isIdenticalToArray({1}, {1, 1}));
    EXPECT_FALSE(isIdenticalToArray({1, 2}, {2, 1}));
    EXPECT_FALSE(isIdenticalToArray({1}, {true}));
    EXPECT_TRUE(isIdenticalToArray({}, {}));
}

TEST(ArrayAdditions, AreIdenticalWhenTheirElementsShareStorage)
{
    const QVariantList inner{1, 2};
    const QVariantMap map{{latin("a"), 1}};
    const QByteArray data("abc");
    QVariantMap changed = map;
    changed.insert(latin("a"), 2);
    changed.insert(latin("a"), 1);

    EXPECT_TRUE(isIdenticalToArray({QVariant(inner), map, data}, {QVariant(inner), map, data}));
    EXPECT_FALSE(isIdenticalToArray({QVariant(inner)}, {QVariant(QVariantList{1, 2})}));
    EXPECT_FALSE(isIdenticalToArray({map}, {changed}));
    EXPECT_FALSE(isIdenticalToArray({data}, {QByteArray("abc").append("") + ""}));
}

TEST(ArrayAdditions, TellExceptionsApartByWhatWasRaised)
{
    const HVException one(latin("IO"), latin("a"));
    const HVException copy = one;
    const HVException equal(latin("IO"), latin("a"));
    const auto with = [](const Exception& exception) { return QVariantList{QVariant::fromValue(exception)}; };

    EXPECT_TRUE(isIdenticalToArray(with(one), with(copy)));
    EXPECT_FALSE(isIdenticalToArray(with(one), with(equal)));
}

TEST(ArrayAdditions, TranslateAndDropNil)
{
    const auto block = [](const QVariant& element, qsizetype index, bool&) {
        return index == 1 ? QVariant() : QVariant(element.toInt() * 10 + int(index));
    };

    EXPECT_EQ(translateArrayUsingBlock({1, 2, 3}, block), (QVariantList{10, 32}));
    EXPECT_TRUE(translateArrayUsingBlock({}, block).isEmpty());
}

TEST(ArrayAdditions, StopTranslatingBehindTheElementThatSaysSo)
{
    const auto block = [](const QVariant& element, qsizetype index, bool& stop) {
        stop = index == 1;
        return element;
    };

    EXPECT_EQ(translateArrayUsingBlock({1, 2, 3}, block), (QVariantList{1, 2}));
}

TEST(ArrayAdditions, KeepAnImmutableCopyAsItWas)
{
    QVariantList list{1};
    const QVariantList copy = immutableCopy(list);
    list.append(2);

    EXPECT_EQ(copy, QVariantList{1});
}

TEST(ArrayAdditions, DescribeThemselvesInOneLine)
{
    const QVariantList nested{latin("b"), QVariantMap{{latin("k"), QStringList{latin("v")}}}};

    EXPECT_EQ(compactDescription(QVariantList{latin("a"), 1}).toStdString(), "\"a\",1");
    EXPECT_EQ(compactDescription(QVariantList{}).toStdString(), "");
    EXPECT_EQ(compactDescription(QVariantList{latin("a"), QVariant(nested), nullObject(), true}).toStdString(),
              "\"a\",\"b\",k:\"v\",<null>,1");
    EXPECT_EQ(compactDescription(QVariantList{QVariant::fromValue(IndexSet{0, 1, 2, 5})}).toStdString(), "{ 0-2, 5 }");
    EXPECT_EQ(compactDescription(QVariantList{QByteArray("ab")}).toStdString(), "{length = 2, bytes = 0x6162}");
}

TEST(ArrayAdditions, DescribeThemselvesWithTheCallersTexts)
{
    const auto inBraces = [](const QVariant& value) { return u'<' + value.toString() + u'>'; };

    EXPECT_EQ(compactDescription(QVariantList{latin("a"), 1}, inBraces).toStdString(), "<a>,<1>");
    EXPECT_EQ(compactDescription(QVariantList{latin("a"), 1}, CompactText()).toStdString(), "\"a\",1");
}

} // namespace
} // namespace havrel
