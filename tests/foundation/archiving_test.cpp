// SPDX-License-Identifier: MIT
#include "foundation/archiving.h"

#include "foundation/description.h"
#include "foundation/error.h"
#include "foundation/index_set.h"
#include "foundation/keyed_archive.h"
#include "foundation/keyed_archiver.h"
#include "foundation/keyed_unarchiver.h"
#include "foundation/property_list.h"
#include "tests/support/archive_expectations.h"
#include "tests/support/archived_node.h"
#include "tests/support/outside_program.h"
#include "tests/support/spelled_value.h"

#include <QUrl>

#include <limits>

namespace havrel {
namespace {

constexpr auto kCannotEncode = "cannot encode object";
constexpr auto kInvalid = "invalid archive data";

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

QVariant node(const QVariant& value, const QVariant& left = {}, const QVariant& right = {})
{
    return QVariant::fromValue(std::make_shared<ArchivedNode>(ArchivedNode{value, left, right}));
}

class Archiving : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { registerArchivableClass(archivedNodeClass()); }
};

struct ValueCase
{
    const char* label;
    QVariant value;
    const char* className;
};

void PrintTo(const ValueCase& each, std::ostream* out)
{
    *out << each.label;
}

class ArchivedValue : public ::testing::TestWithParam<ValueCase>
{
};

TEST_P(ArchivedValue, ComesBackAsItWas)
{
    const QByteArray data = dataForRootObject(GetParam().value);

    EXPECT_EQ(spelled(archivedObject(data)), spelled(GetParam().value));
    EXPECT_EQ(spelled(archivedObjectOfClass(data, latin(GetParam().className))), spelled(GetParam().value));
}

TEST_P(ArchivedValue, IsRefusedWhereAnotherClassIsAskedFor)
{
    const QByteArray data = dataForRootObject(GetParam().value);

    expectBug(
        [&] {
            return archivedObjectOfClasses(data, {latin("Node"), latin("NSException")});
        },
        kInvalid,
        std::string("an object of the class “") + GetParam().className + "” where only these may be: Node, NSEx");
}

const std::vector<ValueCase>& valueCases()
{
    static const std::vector<ValueCase> kCases{
        {"yes", true, "NSNumber"},
        {"signed", qlonglong(-5), "NSNumber"},
        {"unsigned", std::numeric_limits<qulonglong>::max(), "NSNumber"},
        {"real", 1.0, "NSNumber"},
        {"text", latin("text"), "NSString"},
        {"text_like_nil", latin("$null"), "NSString"},
        {"empty_text", latin(""), "NSString"},
        {"lone_surrogate", QString(QChar(0xDC80)), "NSString"},
        {"data", QByteArray("a\0b", 3), "NSData"},
        {"date", QDateTime(QDate(2025, 7, 30), QTime(12, 34, 56, 789), Qt::UTC), "NSDate"},
        {"null", nullObject(), "NSNull"},
        {"empty_list", QVariantList{}, "NSArray"},
        {"empty_map", QVariantMap{}, "NSDictionary"},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, ArchivedValue, ::testing::ValuesIn(valueCases()), [](const auto& each) {
    return std::string(each.param.label);
});

TEST_F(Archiving, KeepsCollectionsOfEverything)
{
    const QVariantMap map{
        {latin("list"), QVariantList{true, 1.5, QVariant(), nullObject(), QVariantList{latin("a")}}},
        {latin("$class"), QVariantMap{{latin(""), QByteArray("x")}}},
    };

    EXPECT_EQ(spelled(archivedObject(dataForRootObject(map))), spelled(map));
}

TEST_F(Archiving, KeepsNil)
{
    EXPECT_FALSE(archivedObject(dataForRootObject(QVariant())).isValid());
    EXPECT_FALSE(archivedObjectOfClass(dataForRootObject(QVariant()), latin("NSString")).isValid());
}

TEST_F(Archiving, KeepsErrorsWithinErrors)
{
    const Error cause = Error(error_domain::kPOSIX, 13);
    const Error error(latin("FilterDef"), -7, {{error_key::kUnderlyingError, QVariant::fromValue(cause)}});

    const QVariant restored = archivedObjectOfClass(dataForRootObject(QVariant::fromValue(error)), latin("NSError"));

    EXPECT_EQ(restored.value<Error>(), error);
}

TEST_F(Archiving, KeepsErrorsThatHoldWhatCannotBeArchived)
{
    const Error error(latin("D"), 1, {{latin("url"), QUrl(latin("file:///x"))}, {latin("n"), 1}});

    const auto restored = archivedObject(dataForRootObject(QVariant::fromValue(error))).value<Error>();

    EXPECT_EQ(restored.userInfo(), (QVariantMap{{latin("url"), latin("file:///x")}, {latin("n"), 1}}));
}

TEST_F(Archiving, KeepsIndexSets)
{
    constexpr auto kFarthest = std::numeric_limits<IndexSet::Index>::max();
    constexpr auto kFar = kFarthest - 1;
    for (const IndexSet& set : {IndexSet{},
                                IndexSet{0},
                                IndexSet{5, 6, 7},
                                IndexSet{0, 1, 2, 5, 300, 70000},
                                IndexSet{kFar},
                                IndexSet{3, kFar},
                                IndexSet{kFarthest},
                                IndexSet{kFar, kFarthest},
                                IndexSet{0, kFarthest}}) {
        const QByteArray data = dataForRootObject(QVariant::fromValue(set));

        EXPECT_EQ(archivedObjectOfClass(data, latin("NSIndexSet")).value<IndexSet>(), set);
    }
}

TEST_F(Archiving, CountsEachIndexOfASetAsAnObject)
{
    IndexSet set;
    for (IndexSet::Index i = 0; i < kMostPropertyListObjects - 1; ++i)
        set.addIndex(i);

    const QByteArray data = dataForRootObject(QVariant::fromValue(set));
    EXPECT_EQ(archivedObjectOfClass(data, latin("NSIndexSet")).value<IndexSet>(), set);
    set.addIndex(kMostPropertyListObjects);

    expectBug([&] { return dataForRootObject(QVariant::fromValue(set)); }, "cannot encode object", "1000000 values");
}

TEST_F(Archiving, WritesASharedObjectOnceAndSharesItAgain)
{
    const QVariant shared = node(latin("shared"));

    const QByteArray data = dataForRootObject(node(1, shared, shared));
    const auto root = nodeIn(archivedObject(data));

    EXPECT_EQ(nodeIn(root->left)->value, latin("shared"));
    EXPECT_EQ(nodeIn(root->left), nodeIn(root->right));
    EXPECT_LT(data.size(), dataForRootObject(node(1, shared, node(latin("shared")))).size());
}

TEST_F(Archiving, SharesAnObjectThatIsReachedInTwoWays)
{
    const QVariant shared = node(1);

    const QVariantList list = archivedObject(dataForRootObject(QVariantList{shared, node(2, shared)})).toList();

    EXPECT_EQ(nodeIn(list[0]), nodeIn(nodeIn(list[1])->left));
}

TEST_F(Archiving, DoesNotMixUpObjectsThatComeAndGo)
{
    ArchivableClass fleeting = archivedNodeClass();
    fleeting.encode = [](const QVariant& object, Encoder& encoder) {
        if (const int left = nodeIn(object)->value.toInt(); left > 0)
            encoder.encodeObject(node(left - 1), QStringLiteral("left"));
        encoder.encodeObject(nodeIn(object)->value, QStringLiteral("value"));
    };
    registerArchivableClass(fleeting);

    const auto root = nodeIn(archivedObject(dataForRootObject(node(3))));
    registerArchivableClass(archivedNodeClass());

    EXPECT_EQ(nodeIn(nodeIn(nodeIn(root->left)->left)->left)->value, QVariant(0));
}

TEST_F(Archiving, RefusesAnObjectInsideItself)
{
    const auto outer = std::make_shared<ArchivedNode>();
    outer->left = node(1, QVariant::fromValue(outer));

    expectBug([&] { return dataForRootObject(QVariant::fromValue(outer)); }, kCannotEncode, "Node is inside itself");
    outer->left.clear();
}

TEST_F(Archiving, RefusesWhatHasNoClassInArchives)
{
    expectBug([] { return dataForRootObject(QUrl()); }, kCannotEncode, "a value of the type QUrl");
    expectBug([] { return dataForRootObject(QVariantList{QUrl()}); }, kCannotEncode, "a value of the type QUrl");
    expectBug(
        [] { return dataForRootObject(QVariant::fromValue(PropertyListUID{1})); }, kCannotEncode, "PropertyListUID");
    expectBug([] { return dataForRootObject(QDateTime()); }, kCannotEncode, "a date that is invalid");
}

QVariant chainOfNodes(int levels)
{
    QVariant chain;
    for (int i = 0; i < levels; ++i)
        chain = node(QVariant(), chain);
    return chain;
}

TEST_F(Archiving, TakesObjectsDownToTheDeepestLevelAndNoFurther)
{
    // A node's empty fields are one level below it.
    const QByteArray data = dataForRootObject(chainOfNodes(keyed_archive::kDeepest - 1));

    EXPECT_NO_THROW((void)archivedObject(data));
    expectBug(
        [] { return dataForRootObject(chainOfNodes(keyed_archive::kDeepest)); }, kCannotEncode, "than 256 levels");
}

TEST_F(Archiving, RefusesMoreObjectsThanItReads)
{
    const QVariantList many(kMostPropertyListObjects, true);

    expectBug([&] { return dataForRootObject(QVariant(many)); }, kCannotEncode, "more than 1000000 values");
}

TEST_F(Archiving, RestrictsWhatACollectionHolds)
{
    const QByteArray data = dataForRootObject(QVariantList{latin("a"), QVariantMap{{latin("b"), 1}}});
    const QStringList enough{latin("NSArray"), latin("NSDictionary"), latin("NSString"), latin("NSNumber")};

    EXPECT_EQ(archivedObjectOfClasses(data, enough).toList().size(), 2);
    EXPECT_EQ(archivedObjectOfClass(data, latin("NSObject")).toList().size(), 2);
    for (const QString& missing : enough) {
        QStringList classes = enough;
        classes.removeOne(missing);
        expectBug([&] { return archivedObjectOfClasses(data, classes); }, kInvalid, missing.toStdString());
    }
}

TEST_F(Archiving, TakesNothingButNilForNoClass)
{
    for (const QVariant& object : {QVariant(latin("a")), QVariant(QVariantList{}), QVariant(QByteArray("a"))}) {
        expectBug([&] { return archivedObjectOfClass(dataForRootObject(object), QString()); }, kInvalid, "only these");
        expectBug([&] { return archivedObjectOfClasses(dataForRootObject(object), {}); }, kInvalid, "only these");
    }
}

TEST_F(Archiving, LetsAnInstanceAskForItsOwnClasses)
{
    const QByteArray good = dataForRootObject(node(latin("a"), node(1)));
    const QByteArray bad = dataForRootObject(node(QVariantList{}));

    EXPECT_NO_THROW((void)archivedObjectOfClass(good, latin("Node")));
    expectBug([&] { return archivedObjectOfClass(bad, latin("Node")); }, kInvalid, "“NSArray” where only these may be");
    expectBug([&] { return archivedObject(bad); }, kInvalid, "“NSArray” where only these may be: NSString, NSNumber");
}

TEST_F(Archiving, AsksForSecureCodingWhereItIsRequired)
{
    ArchivableClass loose = archivedNodeClass();
    loose.supportsSecureCoding = false;
    const QByteArray data = dataForRootObject(node(1), SecureCoding::Yes);
    registerArchivableClass(loose);

    EXPECT_NO_THROW((void)dataForRootObject(node(1), SecureCoding::No));
    EXPECT_NO_THROW((void)archivedObject(data));
    expectBug([] { return dataForRootObject(node(1), SecureCoding::Yes); }, kCannotEncode, "does not support secure");
    expectBug([&] { return archivedObjectOfClass(data, latin("Node")); }, kInvalid, "does not support secure coding");
    registerArchivableClass(archivedNodeClass());
}

TEST_F(Archiving, SaysWhatAnObjectCouldNotBeRestoredFor)
{
    ArchivableClass raising = archivedNodeClass();
    raising.decode = [](Decoder&) -> QVariant { HVException(latin("IO"), latin("no such thing")).raise(); };
    const QByteArray data = dataForRootObject(node(1));
    registerArchivableClass(raising);

    expectBug(
        [&] { return archivedObject(data); }, kInvalid, "of the class “Node” cannot be restored: <IO> no such thing");
    registerArchivableClass(archivedNodeClass());
}

TEST_F(Archiving, TakesAndGivesValuesOnlyWithTheirKeys)
{
    KeyedArchiver archiver(SecureCoding::No);
    KeyedUnarchiver unarchiver(dataForRootObject(1), SecureCoding::No);

    EXPECT_TRUE(archiver.allowsKeyedCoding());
    EXPECT_TRUE(unarchiver.allowsKeyedCoding());
    expectBug(
        [&] {
            archiver.encodeObject(1);
            return 0;
        },
        kCannotEncode,
        "only with their keys");
    expectBug(
        [&] {
            archiver.encodeUnsigned32(1);
            return 0;
        },
        kCannotEncode,
        "only with their keys");
    expectBug(
        [&] {
            archiver.encodeBytes("a");
            return 0;
        },
        kCannotEncode,
        "only with their keys");
    expectBug([&] { return unarchiver.decodeObject(); }, kInvalid, "only for their keys");
    expectBug([&] { return unarchiver.decodeUnsigned32(); }, kInvalid, "only for their keys");
    expectBug([&] { return unarchiver.decodeBytes(); }, kInvalid, "only for their keys");
}

TEST_F(Archiving, GivesFieldsOfEveryTypeBackAndNothingForMissingOnes)
{
    ArchivableClass fields = archivedNodeClass();
    fields.encode = [](const QVariant&, Encoder& encoder) {
        encoder.encodeBool(true, latin("yes"));
        encoder.encodeBool(false, latin("no"));
        encoder.encodeInteger(std::numeric_limits<qint64>::min(), latin("least"));
        encoder.encodeBytes(QByteArray("a\0b", 3), latin("bytes"));
        encoder.encodeObject(QVariant(), latin("nil"));
    };
    fields.decode = [](Decoder& decoder) {
        EXPECT_TRUE(decoder.decodeBool(latin("yes")));
        EXPECT_FALSE(decoder.decodeBool(latin("no")));
        EXPECT_EQ(decoder.decodeInteger(latin("least")), std::numeric_limits<qint64>::min());
        EXPECT_EQ(decoder.decodeBytes(latin("bytes")), QByteArray("a\0b", 3));
        EXPECT_FALSE(decoder.decodeObject({latin("NSObject")}, latin("nil")).isValid());
        EXPECT_TRUE(decoder.containsValueForKey(latin("nil")));
        EXPECT_TRUE(decoder.containsValueForKey(latin("no")));
        EXPECT_FALSE(decoder.containsValueForKey(latin("missing")));
        EXPECT_FALSE(decoder.decodeBool(latin("missing")));
        EXPECT_EQ(decoder.decodeInteger(latin("missing")), 0);
        EXPECT_TRUE(decoder.decodeBytes(latin("missing")).isNull());
        EXPECT_FALSE(decoder.decodeObject({latin("NSObject")}, latin("missing")).isValid());
        EXPECT_FALSE(decoder.containsValueForKey(latin("$class"))) << "the layout's own key is none of the object's";
        return QVariant(latin("decoded"));
    };
    registerArchivableClass(fields);

    EXPECT_EQ(archivedObject(dataForRootObject(node(1))), latin("decoded"));
    registerArchivableClass(archivedNodeClass());
}

TEST_F(Archiving, HasTheDocumentedLayout)
{
    constexpr char kCheck[] = R"(
import plistlib, sys
from plistlib import UID
archive = plistlib.loads(sys.stdin.buffer.read())
assert archive["$version"] == 100000 and archive["$archiver"] == "NSKeyedArchiver"
assert archive["$top"] == {"root": UID(1)}, archive["$top"]
objects = archive["$objects"]
assert objects[0] == "$null"
at = lambda uid: objects[uid.data]
classes = lambda thing: (at(thing["$class"])["$classname"], at(thing["$class"])["$classes"])
root = at(archive["$top"]["root"])
assert classes(root) == ("NSDictionary", ["NSDictionary", "NSObject"])
fields = {at(key): at(value) for key, value in zip(root["NS.keys"], root["NS.objects"])}
assert fields["text"] == "a" and fields["number"] == 7
assert classes(fields["date"])[0] == "NSDate" and fields["date"]["NS.time"] == 1.5
assert classes(fields["data"])[0] == "NSData" and fields["data"]["NS.data"] == b"xy"
assert classes(fields["null"]) == ("NSNull", ["NSNull", "NSObject"])
assert classes(fields["list"])[0] == "NSArray"
assert [at(uid) for uid in fields["list"]["NS.objects"]] == ["a", "$null"]
assert fields["list"]["NS.objects"][1] == UID(0)
node = fields["node"]
assert classes(node) == ("Node", ["Node", "NSObject"])
assert node["left"] == UID(0) and node["$$right"] == UID(0) and at(node["value"]) == "a"
error = fields["error"]
assert classes(error)[0] == "NSError" and at(error["NSDomain"]) == "D" and error["NSCode"] == -1
assert fields["one"]["NSRangeCount"] == 1 and fields["one"]["NSLocation"] == 5 and fields["one"]["NSLength"] == 2
assert fields["two"]["NSRangeCount"] == 2 and fields["two"]["NSRangeData"] == bytes([1, 1, 0xAC, 2, 1])
assert sum(1 for each in objects if each == "a") == 1, "equal strings are written once"
assert sum(1 for each in objects if type(each) is dict and each.get("$classname") == "NSIndexSet") == 1
print("same")
)";
    const QVariantMap map{
        {latin("text"), latin("a")},
        {latin("number"), 7},
        {latin("date"), QDateTime(QDate(2001, 1, 1), QTime(0, 0, 1, 500), Qt::UTC)},
        {latin("data"), QByteArray("xy")},
        {latin("null"), nullObject()},
        {latin("list"), QVariantList{latin("a"), QVariant()}},
        {latin("node"), node(latin("a"))},
        {latin("error"), QVariant::fromValue(Error(latin("D"), -1))},
        {latin("one"), QVariant::fromValue(IndexSet{5, 6})},
        {latin("two"), QVariant::fromValue(IndexSet{1, 300})},
    };

    EXPECT_EQ(outputOfPython(kCheck, dataForRootObject(map)), "same\n");
}

TEST_F(Archiving, ReadsWhatOtherArchiversWrite)
{
    constexpr char kWrite[] = R"(
import plistlib, sys
from plistlib import UID
archive = {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": UID(2)}, "$objects": [
    "$null",
    {"$classname": "NSMutableArray", "$classes": ["NSMutableArray", "NSArray", "NSObject"], "$classhints": []},
    {"$class": UID(1), "NS.objects": [UID(3), UID(5), UID(7), UID(8), UID(10), UID(11)]},
    {"$class": UID(4), "NS.string": "changed"},
    {"$classname": "NSMutableString", "$classes": ["NSMutableString", "NSString", "NSObject"]},
    {"$class": UID(6), "NS.data": b"xy"},
    {"$classname": "NSMutableData", "$classes": ["NSMutableData", "NSData", "NSObject"]},
    b"bare",
    {"$class": UID(9), "NS.keys": [UID(3)], "NS.objects": [UID(0)]},
    {"$classname": "NSMutableDictionary", "$classes": ["NSMutableDictionary", "NSDictionary", "NSObject"]},
    {"$class": UID(12), "NS.time": 2},
    True,
    {"$classname": "NSDate", "$classes": ["NSDate", "NSObject"]}]}
sys.stdout.buffer.write(plistlib.dumps(archive, fmt=plistlib.FMT_BINARY))
)";
    const QVariantList expected{latin("changed"),
                                QByteArray("xy"),
                                QByteArray("bare"),
                                QVariantMap{{latin("changed"), QVariant()}},
                                QDateTime(QDate(2001, 1, 1), QTime(0, 0, 2), Qt::UTC),
                                true};
    const QStringList immutable{latin("NSArray"),
                                latin("NSString"),
                                latin("NSData"),
                                latin("NSDictionary"),
                                latin("NSDate"),
                                latin("NSNumber")};
    const QByteArray data = outputOfPython(kWrite);

    EXPECT_EQ(spelled(archivedObject(data)), spelled(expected));
    EXPECT_EQ(spelled(archivedObjectOfClasses(data, immutable)), spelled(expected));
}

TEST_F(Archiving, ReadsArchivesInXML)
{
    const QVariant contents = parsePropertyList(dataForRootObject(node(latin("a")))).value;

    EXPECT_EQ(nodeIn(archivedObject(xmlPropertyList(contents).bytes))->value, latin("a"));
}

} // namespace
} // namespace havrel
