// SPDX-License-Identifier: MIT
#include "foundation/collection_enumeration.h"

#include "foundation/array_additions.h"
#include "foundation/index_set.h"

#include <QSet>

#include <gtest/gtest.h>

namespace havrel {
namespace {

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

std::string valuesOf(const QVariant& collection)
{
    QStringList texts;
    enumerateRecursiveCollectionValuesUsingBlock(
        collection, [&](const QVariant& each) { texts << u'(' + compactElementText(each) + u')'; });
    return texts.join(u' ').toStdString();
}

std::string objectsOf(const QVariant& collection)
{
    QStringList texts;
    enumerateRecursiveCollectionObjectUsingBlock(
        collection, [&](const QVariant& each) { texts << u'(' + compactElementText(each) + u')'; });
    return texts.join(u' ').toStdString();
}

const QVariantMap kMap{{latin("k"), QVariantList{1, latin("ab")}}, {latin("l"), QVariantMap{{latin("m"), 2}}}};

TEST(CollectionEnumeration, VisitsValuesAndWhatIsInThem)
{
    EXPECT_EQ(valuesOf(kMap), "(1,\"ab\") (1) (\"ab\") (m:2) (2)");
    EXPECT_EQ(valuesOf(QVariantList{QVariant(kMap)}), "(k:1,\"ab\",l:m:2) (1,\"ab\") (1) (\"ab\") (m:2) (2)");
}

TEST(CollectionEnumeration, VisitsKeysToo)
{
    EXPECT_EQ(objectsOf(kMap), "(\"k\") (1,\"ab\") (1) (\"ab\") (\"l\") (m:2) (\"m\") (2)");
    EXPECT_EQ(objectsOf(QVariantList{1, 2}), "(1) (2)");
}

TEST(CollectionEnumeration, DescendsIntoEveryKindOfCollection)
{
    const QSet<QString> set{latin("s")};
    const QVariantHash hash{{latin("h"), 3}};

    EXPECT_EQ(valuesOf(QVariant::fromValue(set)), "(\"s\")");
    EXPECT_EQ(valuesOf(QStringList{latin("a"), latin("b")}), "(\"a\") (\"b\")");
    EXPECT_EQ(objectsOf(hash), "(\"h\") (3)");
    EXPECT_EQ(valuesOf(QVariantList{QVariant::fromValue(set)}).substr(0, 1), "(");
}

TEST(CollectionEnumeration, FindsNothingInWhatIsNoCollection)
{
    EXPECT_EQ(valuesOf(latin("text")), "");
    EXPECT_EQ(valuesOf(QByteArray("data")), "");
    EXPECT_EQ(valuesOf(QVariant()), "");
    EXPECT_EQ(valuesOf(1), "");
    EXPECT_EQ(valuesOf(QVariant::fromValue(IndexSet{1, 2})), "");
    EXPECT_EQ(objectsOf(QVariantList{}), "");
}

} // namespace
} // namespace havrel
