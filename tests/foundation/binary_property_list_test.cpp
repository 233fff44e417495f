// SPDX-License-Identifier: MIT
#include "foundation/property_list.h"
#include "tests/support/spelled_value.h"

#include <QVariantMap>

#include <gtest/gtest.h>

#include <initializer_list>

namespace havrel {
namespace {

QByteArray bigEndian(quint64 number, int width)
{
    QByteArray bytes;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(number >> shift));
    return bytes;
}

struct Trailer
{
    int offsetSize = 1;
    int referenceSize = 1;
    quint64 count = 0;
    quint64 top = 0;
    quint64 table = 0;
};

QByteArray withTrailer(const QByteArray& body, const Trailer& trailer)
{
    QByteArray bytes = body + QByteArray(6, '\0');
    bytes.append(static_cast<char>(trailer.offsetSize)).append(static_cast<char>(trailer.referenceSize));
    return bytes + bigEndian(trailer.count, 8) + bigEndian(trailer.top, 8) + bigEndian(trailer.table, 8);
}

/// A list of these objects with references and offsets of one byte; the first is the root.
QByteArray listOfObjects(std::initializer_list<QByteArray> objects)
{
    QByteArray body("bplist00");
    QByteArray table;
    for (const QByteArray& object : objects) {
        table.append(static_cast<char>(body.size()));
        body += object;
    }
    Trailer trailer;
    trailer.count = objects.size();
    trailer.table = static_cast<quint64>(body.size());
    return withTrailer(body + table, trailer);
}

QByteArray operator""_x(const char* hex, std::size_t length)
{
    return QByteArray::fromHex(QByteArray(hex, static_cast<qsizetype>(length)));
}

struct BrokenCase
{
    const char* label;
    QByteArray bytes;
    const char* fault;
};

void PrintTo(const BrokenCase& each, std::ostream* out)
{
    *out << each.label;
}

class BrokenBinaryPropertyList : public ::testing::TestWithParam<BrokenCase>
{
};

TEST_P(BrokenBinaryPropertyList, IsRefusedWithASentence)
{
    const PropertyListReading read = parsePropertyList(GetParam().bytes);

    EXPECT_FALSE(read.value.isValid());
    ASSERT_TRUE(read.error);
    EXPECT_EQ(read.error->domain(), error_domain::kCocoa);
    EXPECT_EQ(read.error->localizedDescription().toStdString(),
              std::string("The property list cannot be read: ") + GetParam().fault + ".");
}

const QByteArray kTrue = "\x09";
const char* const kBeyond = "an object reaches beyond the objects";
const char* const kTrailerDamaged = "its trailer is damaged";

const std::vector<BrokenCase>& brokenCases()
{
    const QByteArray body = "bplist00\x09\x08";
    static const std::vector<BrokenCase> kCases{
        {"nothing", "", "the data is neither a binary nor an XML property list"},
        {"text", "hello", "the data is neither a binary nor an XML property list"},
        {"other_version", "bplist15" + QByteArray(40, '\0'), "its binary version is unknown"},
        {"head_only", "bplist00", "it is too short"},
        {"short", "bplist00" + QByteArray(33, '\0'), "it is too short"},
        {"zeros", "bplist00" + QByteArray(34, '\0'), kTrailerDamaged},
        {"no_objects", withTrailer(body, {1, 1, 0, 0, 9}), kTrailerDamaged},
        {"wide_offsets", withTrailer(body, {9, 1, 1, 0, 9}), kTrailerDamaged},
        {"no_references", withTrailer(body, {1, 0, 1, 0, 9}), kTrailerDamaged},
        {"top_outside", withTrailer(body, {1, 1, 1, 1, 9}), kTrailerDamaged},
        {"table_in_trailer", withTrailer(body, {1, 1, 1, 0, 11}), kTrailerDamaged},
        {"table_far_away", withTrailer(body, {1, 1, 1, 0, ~quint64(0)}), kTrailerDamaged},
        {"table_in_head", withTrailer(body, {1, 1, 1, 0, 8}), kTrailerDamaged},
        {"count_beyond_table", withTrailer(body, {1, 1, 2, 0, 9}), kTrailerDamaged},
        {"count_overflows", withTrailer(body, {8, 1, quint64(1) << 61, 0, 9}), kTrailerDamaged},
        {"offset_in_head", withTrailer("bplist00\x09\x07", {1, 1, 1, 0, 9}), "an object lies outside the objects"},
        {"offset_in_table", withTrailer("bplist00\x09\x09", {1, 1, 1, 0, 9}), "an object lies outside the objects"},
        {"reference_outside", listOfObjects({"a105"_x}), "a reference leads outside the table of objects"},
        {"holds_itself", listOfObjects({"a100"_x}), "a container holds itself"},
        {"holds_its_holder", listOfObjects({"a101"_x, "d10200"_x, "5161"_x}), "a container holds itself"},
        {"key_is_its_map", listOfObjects({"d10001"_x, kTrue}), "a container holds itself"},
        {"key_no_string", listOfObjects({"d10101"_x, kTrue}), "a dictionary's key is not a string"},
        {"fill", listOfObjects({"0f"_x}), "it holds an object of the unknown type 0x0f"},
        {"set", listOfObjects({"c0"_x}), "it holds an object of the unknown type 0xc0"},
        {"url", listOfObjects({"0c"_x}), "it holds an object of the unknown type 0x0c"},
        {"integer_too_wide", listOfObjects({"15"_x + QByteArray(32, '\0')}), "an integer is too wide"},
        {"integer_cut", listOfObjects({"1300000000000000"_x}), kBeyond},
        {"65_bits", listOfObjects({"14"_x + bigEndian(1, 8) + bigEndian(0, 8)}), "an integer has more than 64 bits"},
        {"65_bits_negative",
         listOfObjects({"14"_x + bigEndian(~quint64(0), 8) + bigEndian(1, 8)}),
         "an integer has more than 64 bits"},
        {"real_of_two_bytes", listOfObjects({"210000"_x}), "a real number has an unknown width"},
        {"real_cut", listOfObjects({"23000000"_x}), kBeyond},
        {"date_of_four_bytes", listOfObjects({"3200000000"_x}), "a date has an unknown width"},
        {"date_nan", listOfObjects({"337ff8000000000000"_x}), "a date is out of range"},
        {"date_infinite", listOfObjects({"337ff0000000000000"_x}), "a date is out of range"},
        {"date_far", listOfObjects({"337fe0000000000000"_x}), "a date is out of range"},
        {"data_cut", listOfObjects({"4201"_x}), kBeyond},
        {"count_cut", listOfObjects({"4f"_x}), kBeyond},
        {"count_no_integer", listOfObjects({"4f5001"_x}), "a count is damaged"},
        {"count_too_wide", listOfObjects({"4f14"_x + QByteArray(16, '\0')}), "a count is damaged"},
        {"count_huge", listOfObjects({"4f13ffffffffffffffff"_x}), kBeyond},
        {"list_count_huge", listOfObjects({"af13ffffffffffffffff"_x}), kBeyond},
        {"list_count_overflows", listOfObjects({"af138000000000000001"_x}), kBeyond},
        {"map_cut", listOfObjects({"d101"_x}), kBeyond},
        {"unicode_cut", listOfObjects({"6100"_x}), kBeyond},
        {"unicode_count_overflows", listOfObjects({"6f138000000000000000"_x}), kBeyond},
        {"ascii_beyond_ascii", listOfObjects({"5180"_x}), "a string of ASCII characters holds others"},
        {"uid_too_wide", listOfObjects({"88"_x + QByteArray(9, '\0')}), "a reference number has more than 64 bits"},
        {"uid_cut", listOfObjects({"8100"_x}), kBeyond},
    };
    return kCases;
}

INSTANTIATE_TEST_SUITE_P(Cases, BrokenBinaryPropertyList, ::testing::ValuesIn(brokenCases()), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(BinaryPropertyList, TellsAnUnknownVersionByItsCode)
{
    EXPECT_EQ(parsePropertyList("bplist15").error->code(), property_list_error::kReadUnknownVersion);
    EXPECT_EQ(parsePropertyList("bplist00").error->code(), property_list_error::kReadCorrupt);
}

TEST(BinaryPropertyList, ReadsFormsThatOnlyOtherWritersUse)
{
    EXPECT_EQ(spelled(parsePropertyList(listOfObjects({"223fc00000"_x})).value), spelled(1.5));
    EXPECT_EQ(spelled(parsePropertyList(listOfObjects({"130000000000000001"_x})).value), spelled(qlonglong(1)));
    EXPECT_EQ(spelled(parsePropertyList(listOfObjects({"14"_x + QByteArray(16, '\xff')})).value),
              spelled(qlonglong(-1)));
    EXPECT_EQ(spelled(parsePropertyList(listOfObjects({"4f1001aa"_x})).value), spelled(QByteArray("\xaa")));
    EXPECT_EQ(spelled(parsePropertyList(listOfObjects({"82000001"_x})).value),
              spelled(QVariant::fromValue(PropertyListUID{1})));
}

TEST(BinaryPropertyList, KeepsTheLastOfTwoEqualKeys)
{
    const QByteArray bytes = listOfObjects({"d2010102"_x + "03"_x, "5161"_x, "1001"_x, "1002"_x});

    EXPECT_EQ(spelled(parsePropertyList(bytes).value), spelled(QVariantMap{{QStringLiteral("a"), qlonglong(2)}}));
}

TEST(BinaryPropertyList, KeepsALongTextThatIsReferredToTwiceOnceInMemory)
{
    const QString text(1000, u'x');

    const QVariantList read = parsePropertyList(binaryPropertyList(QVariantList{text, text}).bytes).value.toList();

    ASSERT_EQ(read, QVariantList({text, text}));
    EXPECT_EQ(read[0].toString().constData(), read[1].toString().constData());
}

TEST(BinaryPropertyList, ReadsAContainerThatIsReferredToTwice)
{
    const QByteArray bytes = listOfObjects({"a20101"_x, "a102"_x, kTrue});

    EXPECT_EQ(spelled(parsePropertyList(bytes).value), spelled(QVariantList{QVariantList{true}, QVariantList{true}}));
}

/// A chain of lists, each holding the next one \p references times.
QByteArray chainOfLists(int levels, int references)
{
    QByteArray body("bplist00");
    QByteArray table;
    for (int i = 1; i <= levels; ++i) {
        table.append(bigEndian(static_cast<quint64>(body.size()), 2));
        body.append(static_cast<char>(0xA0 + references)).append(QByteArray(references, static_cast<char>(i)));
    }
    table.append(bigEndian(static_cast<quint64>(body.size()), 2));
    body.append(kTrue);
    Trailer trailer{2, 1, static_cast<quint64>(levels) + 1, 0, static_cast<quint64>(body.size())};
    return withTrailer(body + table, trailer);
}

TEST(BinaryPropertyList, ReadsContainersDownToTheDeepestLevelAndNoFurther)
{
    EXPECT_FALSE(parsePropertyList(chainOfLists(kDeepestPropertyList, 1)).error);

    const PropertyListReading read = parsePropertyList(chainOfLists(kDeepestPropertyList + 1, 1));

    ASSERT_TRUE(read.error);
    EXPECT_TRUE(read.error->localizedDescription().contains(QStringLiteral("nest deeper than 64 levels")));
}

TEST(BinaryPropertyList, RefusesAFewBytesThatUnfoldToBillionsOfValues)
{
    const PropertyListReading read = parsePropertyList(chainOfLists(40, 14));

    ASSERT_TRUE(read.error);
    EXPECT_TRUE(read.error->localizedDescription().contains(QStringLiteral("more than 1000000 values")));
}

TEST(BinaryPropertyList, IsRefusedWhereverItIsCut)
{
    const QVariantMap map{{QStringLiteral("capture"), QStringLiteral("exclude")},
                          {QStringLiteral("list"), QVariantList{1, 2.5, QByteArray("abc"), QString(QChar(0x20AC))}}};
    const QByteArray whole = binaryPropertyList(map).bytes;

    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_TRUE(parsePropertyList(whole.first(length)).error) << "cut to " << length;
}

} // namespace
} // namespace havrel
