// SPDX-License-Identifier: MIT
#include "foundation/archiving.h"
#include "foundation/property_list.h"
#include "tests/support/archive_expectations.h"
#include "tests/support/archived_node.h"

namespace havrel {
namespace {

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

QVariant uid(quint64 number)
{
    return QVariant::fromValue(PropertyListUID{number});
}

QVariantMap classNamed(const char* name)
{
    return {{latin("$classname"), latin(name)}, {latin("$classes"), QStringList{latin(name), latin("NSObject")}}};
}

QVariantMap contents(const QVariant& top, const QVariant& objects)
{
    return {{latin("$version"), 100000},
            {latin("$archiver"), latin("NSKeyedArchiver")},
            {latin("$top"), top},
            {latin("$objects"), objects}};
}

QByteArray bytes(const QVariant& value)
{
    return binaryPropertyList(value).bytes;
}

/// "$null", then the objects from 1 on; 1 is the root.
QByteArray archiveOf(const QVariantList& objects)
{
    return bytes(contents(QVariantMap{{latin("root"), uid(1)}}, QVariantList{latin("$null")} + objects));
}

/// One object of the class with the fields.
QByteArray instanceOf(const char* className, QVariantMap fields)
{
    fields.insert(latin("$class"), uid(2));
    return archiveOf({fields, classNamed(className)});
}

QVariantMap without(QVariantMap map, const char* key)
{
    map.remove(latin(key));
    return map;
}

QVariantMap with(QVariantMap map, const char* key, const QVariant& value)
{
    map.insert(latin(key), value);
    return map;
}

QVariantList uids(std::initializer_list<quint64> numbers)
{
    QVariantList list;
    for (const quint64 number : numbers)
        list << uid(number);
    return list;
}

struct BrokenCase
{
    const char* label;
    QByteArray archive;
    const char* fault;
};

void PrintTo(const BrokenCase& each, std::ostream* out)
{
    *out << each.label;
}

class BrokenArchive : public ::testing::TestWithParam<BrokenCase>
{
protected:
    static void SetUpTestSuite() { registerArchivableClass(archivedNodeClass()); }
};

TEST_P(BrokenArchive, IsRefusedWithTheError)
{
    expectBug([] { return archivedObject(GetParam().archive); }, "invalid archive data", GetParam().fault);
    expectBug([] { return archivedObjectOfClass(GetParam().archive, latin("NSObject")); },
              "invalid archive data",
              GetParam().fault);
}

const std::vector<BrokenCase>& brokenCases()
{
    const QVariantMap whole = contents(QVariantMap{{latin("root"), uid(1)}}, QVariantList{latin("$null"), latin("a")});
    const auto list = [](const QVariantList& references) {
        return QVariantMap{{latin("$class"), uid(2)}, {latin("NS.objects"), references}};
    };
    const auto map = [](const QVariantList& keys, const QVariantList& objects) {
        return QVariantMap{{latin("$class"), uid(2)}, {latin("NS.keys"), keys}, {latin("NS.objects"), objects}};
    };
    const auto range = [](qint64 count, const QByteArray& data) {
        return instanceOf("NSIndexSet", {{latin("NSRangeCount"), count}, {latin("NSRangeData"), data}});
    };
    static const std::vector<BrokenCase> kCases{
        {"nothing", "", "neither a binary nor an XML property list"},
        {"noise", "bplist00 noise", "it is too short"},
        {"no_dictionary", bytes(QVariantList{}), "it is a property list, but no keyed archive"},
        {"no_archiver", bytes(without(whole, "$archiver")), "no keyed archive"},
        {"other_archiver", bytes(with(whole, "$archiver", latin("Other"))), "no keyed archive"},
        {"no_version", bytes(without(whole, "$version")), "its version is unknown"},
        {"other_version", bytes(with(whole, "$version", 100001)), "its version is unknown"},
        {"version_as_text", bytes(with(whole, "$version", latin("100000"))), "its version is unknown"},
        {"no_top", bytes(without(whole, "$top")), "a reference is missing"},
        {"top_no_dictionary", bytes(with(whole, "$top", uid(1))), "a reference is missing"},
        {"no_root", bytes(with(whole, "$top", QVariantMap{{latin("other"), uid(1)}})), "a reference is missing"},
        {"root_no_reference", bytes(with(whole, "$top", QVariantMap{{latin("root"), 1}})), "a reference is missing"},
        {"no_objects", bytes(without(whole, "$objects")), "a reference leads outside the objects"},
        {"objects_no_list", bytes(with(whole, "$objects", QVariantMap{})), "a reference leads outside the objects"},
        {"root_outside", archiveOf({}), "a reference leads outside the objects"},
        {"root_far_outside",
         bytes(with(whole, "$top", QVariantMap{{latin("root"), uid(~quint64(0))}})),
         "a reference leads outside the objects"},
        {"bare_list", archiveOf({QVariant(QVariantList{})}), "an object without a class"},
        {"bare_reference", archiveOf({uid(1)}), "an object without a class"},
        {"no_class", archiveOf({QVariantMap{}}), "a reference is missing"},
        {"class_outside", archiveOf({QVariantMap{{latin("$class"), uid(9)}}}), "outside the objects"},
        {"class_is_nil", archiveOf({QVariantMap{{latin("$class"), uid(0)}}}), "an object's class has no name"},
        {"class_is_text", archiveOf({QVariantMap{{latin("$class"), uid(2)}}, latin("NSNull")}), "class has no name"},
        {"class_is_itself", archiveOf({QVariantMap{{latin("$class"), uid(1)}}}), "an object's class has no name"},
        {"class_name_no_text",
         archiveOf({QVariantMap{{latin("$class"), uid(2)}}, QVariantMap{{latin("$classname"), 1}}}),
         "an object's class has no name"},
        {"unknown_class", instanceOf("QProcess", {}), "the class “QProcess” is unknown here"},
        {"root_class", instanceOf("NSObject", {}), "the class “NSObject” is unknown here"},
        {"number_with_fields", instanceOf("NSNumber", {}), "the class “NSNumber” is unknown here"},
        {"text_without_text", instanceOf("NSMutableString", {}), "the value of “NS.string” is of the wrong kind"},
        {"text_as_number", instanceOf("NSString", {{latin("NS.string"), 1}}), "“NS.string” is of the wrong kind"},
        {"data_as_text", instanceOf("NSData", {{latin("NS.data"), latin("a")}}), "“NS.data” is of the wrong kind"},
        {"date_without_time", instanceOf("NSDate", {}), "the value of “NS.time” is of the wrong kind"},
        {"date_as_text", instanceOf("NSDate", {{latin("NS.time"), latin("1")}}), "“NS.time” is of the wrong kind"},
        {"date_far", instanceOf("NSDate", {{latin("NS.time"), 1e300}}), "the value of “NS.time” is of the wrong kind"},
        {"list_without_objects", instanceOf("NSArray", {}), "the value of “NS.objects” is of the wrong kind"},
        {"list_of_no_references", archiveOf({list({latin("a")}), classNamed("NSArray")}), "a reference is missing"},
        {"list_in_itself", archiveOf({list(uids({1})), classNamed("NSArray")}), "an object is inside itself"},
        {"list_in_list_in_itself",
         archiveOf({list(uids({3})), classNamed("NSArray"), list(uids({1}))}),
         "an object is inside itself"},
        {"list_of_outside", archiveOf({list(uids({0, 3})), classNamed("NSArray")}), "leads outside the objects"},
        {"more_keys_than_values",
         archiveOf({map(uids({3}), {}), classNamed("NSDictionary"), latin("k")}),
         "a dictionary has not as many values as keys"},
        {"key_is_nil", archiveOf({map(uids({0}), uids({0})), classNamed("NSDictionary")}), "key is not a string"},
        {"key_is_a_number",
         archiveOf({map(uids({3}), uids({3})), classNamed("NSDictionary"), 1}),
         "a dictionary's key is not a string"},
        {"map_in_itself",
         archiveOf({map(uids({3}), uids({1})), classNamed("NSDictionary"), latin("k")}),
         "an object is inside itself"},
        {"instance_in_itself", instanceOf("Node", {{latin("left"), uid(1)}}), "an object is inside itself"},
        {"field_no_reference", instanceOf("Node", {{latin("left"), latin("a")}}), "a reference is missing"},
        {"field_of_wrong_class", instanceOf("Node", {{latin("value"), uid(2)}}), "a reference is missing"},
        {"code_as_text", instanceOf("NSError", {{latin("NSCode"), latin("1")}}), "“NSCode” is of the wrong kind"},
        {"code_as_real", instanceOf("NSError", {{latin("NSCode"), 1.0}}), "“NSCode” is of the wrong kind"},
        {"domain_no_text",
         archiveOf({QVariantMap{{latin("$class"), uid(2)}, {latin("NSDomain"), uid(3)}}, classNamed("NSError"), 1}),
         "“NSNumber” where only these may be: NSString"},
        {"range_too_long",
         instanceOf("NSIndexSet",
                    {{latin("NSRangeCount"), 1}, {latin("NSLocation"), 0}, {latin("NSLength"), qlonglong(1) << 62}}),
         "a set of indexes is damaged or too large"},
        {"range_beyond_64_bits",
         instanceOf("NSIndexSet", {{latin("NSRangeCount"), 1}, {latin("NSLocation"), -2}, {latin("NSLength"), 5}}),
         "a set of indexes is damaged or too large"},
        {"range_behind_64_bits",
         instanceOf("NSIndexSet", {{latin("NSRangeCount"), 1}, {latin("NSLocation"), -1}, {latin("NSLength"), 2}}),
         "a set of indexes is damaged or too large"},
        {"range_behind_the_last_index",
         range(2, QByteArray(9, '\xff') + QByteArray("\1\1\0\1", 4)),
         "a set of indexes is damaged or too large"},
        {"ranges_cut", range(2, QByteArray("\1\1\5", 3)), "a set of indexes is cut"},
        {"ranges_missing", range(1'000'000'000, {}), "a set of indexes is cut"},
        {"ranges_descending", range(2, QByteArray("\5\1\1\1", 4)), "a set of indexes is damaged"},
        {"ranges_overlapping", range(2, QByteArray("\5\3\6\1", 4)), "a set of indexes is damaged"},
        {"range_number_too_long", range(2, QByteArray(11, '\xff')), "a set of indexes is cut"},
        {"range_data_as_text",
         instanceOf("NSIndexSet", {{latin("NSRangeCount"), 2}, {latin("NSRangeData"), latin("a")}}),
         "“NSRangeData” is of the wrong kind"},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, BrokenArchive, ::testing::ValuesIn(brokenCases()), [](const auto& each) {
    return std::string(each.param.label);
});

/// A list of a thousand sets that hold so many indexes each.
QByteArray archiveOfSets(qint64 indexes)
{
    constexpr quint64 kSets = 1000;
    QVariantList references;
    QVariantList sets;
    for (quint64 i = 0; i < kSets; ++i) {
        references << uid(4 + i);
        sets << QVariantMap{{latin("$class"), uid(3)},
                            {latin("NSRangeCount"), 1},
                            {latin("NSLocation"), 0},
                            {latin("NSLength"), indexes}};
    }
    const QVariantMap list{{latin("$class"), uid(2)}, {latin("NS.objects"), references}};
    return archiveOf(QVariantList{list, classNamed("NSArray"), classNamed("NSIndexSet")} + sets);
}

TEST(HostileArchive, ThatUnfoldsToManyLargeSetsOfIndexesIsRefused)
{
    EXPECT_EQ(archivedObject(archiveOfSets(998)).toList().size(), 1000);
    for (const qint64 indexes : {1000, 400'000, 1'000'000})
        expectBug(
            [&] { return archivedObject(archiveOfSets(indexes)); }, "invalid archive data", "more than 1000000 values");
}

TEST(HostileArchive, ThatUnfoldsToBillionsOfObjectsIsRefused)
{
    QVariantList objects;
    constexpr quint64 kLevels = 60;
    for (quint64 level = 1; level <= kLevels; ++level) {
        const quint64 next = level < kLevels ? level + 1 : 0;
        objects << QVariantMap{{latin("$class"), uid(kLevels + 1)}, {latin("NS.objects"), uids({next, next, next})}};
    }
    objects << classNamed("NSArray");

    expectBug([&] { return archivedObject(archiveOf(objects)); }, "invalid archive data", "more than 1000000 values");
}

TEST(HostileArchive, ThatNestsTooDeepIsRefused)
{
    QVariantList objects;
    constexpr quint64 kLevels = 10'000;
    for (quint64 level = 1; level <= kLevels; ++level)
        objects << QVariantMap{{latin("$class"), uid(kLevels + 1)}, {latin("NS.objects"), uids({level + 1})}};
    objects << classNamed("NSArray");

    expectBug([&] { return archivedObject(archiveOf(objects)); }, "invalid archive data", "deeper than 256 levels");
}

TEST(HostileArchive, CannotPassAnotherClassOffAsTheOneAskedFor)
{
    QVariantMap disguised = classNamed("Node");
    disguised.insert(latin("$classes"), QStringList{latin("Node"), latin("NSString"), latin("NSObject")});
    const QByteArray archive = archiveOf({QVariantMap{{latin("$class"), uid(2)}}, disguised});
    registerArchivableClass(archivedNodeClass());

    expectBug([&] { return archivedObjectOfClass(archive, latin("NSString")); },
              "invalid archive data",
              "“Node” where only these may be: NSString");
}

TEST(HostileArchive, CannotReachAnObjectThroughAWiderDoor)
{
    // The same list is read first where lists may be, then where only nodes may be.
    const QByteArray archive = archiveOf({
        QVariantMap{{latin("$class"), uid(2)}, {latin("NS.objects"), uids({3, 4})}},
        classNamed("NSArray"),
        QVariantMap{{latin("$class"), uid(2)}, {latin("NS.objects"), QVariantList{}}},
        QVariantMap{{latin("$class"), uid(5)}, {latin("left"), uid(3)}},
        classNamed("Node"),
    });
    registerArchivableClass(archivedNodeClass());

    expectBug(
        [&] { return archivedObject(archive); }, "invalid archive data", "“NSArray” where only these may be: Node");
}

TEST(HostileArchive, IsRefusedWhereverItIsCut)
{
    const QByteArray whole = dataForRootObject(QVariantList{latin("a"), QVariantMap{{latin("b"), 1.5}}});

    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_THROW((void)archivedObject(whole.first(length)), HVException) << "cut to " << length;
}

} // namespace
} // namespace havrel
