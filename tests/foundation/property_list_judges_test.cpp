// SPDX-License-Identifier: MIT
#include "foundation/property_list.h"
#include "tests/support/outside_program.h"
#include "tests/support/spelled_value.h"

#include <gtest/gtest.h>

#include <limits>

namespace havrel {
namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/// One of everything that other programs know too.
QVariantMap sample()
{
    QVariantList many;
    for (int i = 0; i < 300; ++i)
        many << text("line %1").arg(i);
    return {
        {text("bool"), true},
        {text("byte"), qlonglong(200)},
        {text("data"), QByteArray("\0\x01\xfe\xff", 4)},
        {text("date"), QDateTime(QDate(2025, 7, 30), QTime(12, 34, 56), Qt::UTC)},
        {text("double"), 0.1},
        {text("early"), QDateTime(QDate(1962, 2, 20), QTime(14, 47, 39), Qt::UTC)},
        {text("empty"), QVariantList{QVariantMap{}, QVariantList{}, QString(), QByteArray("")}},
        {text("largest"), std::numeric_limits<qulonglong>::max()},
        {text("many"), many},
        {text("negative"), qlonglong(-5)},
        {text("signed"), std::numeric_limits<qlonglong>::max()},
        {text("smallest"), std::numeric_limits<qlonglong>::min()},
        {text("text"), text("größer € \xF0\x9F\x98\x80 <&> \n\t")},
        {text("whole"), 3.0},
        {text("schlüssel"), QVariantMap{{text("capture"), text("exclude")}}},
    };
}

constexpr char kReadAndRewrite[] = R"(
import plistlib, sys
value = plistlib.loads(sys.stdin.buffer.read())
sys.stdout.buffer.write(plistlib.dumps(value, fmt=plistlib.%1, sort_keys=True))
)";

QByteArray rewrittenByPython(const QByteArray& bytes, const char* format)
{
    return outputOfPython(QString::fromLatin1(kReadAndRewrite).arg(QLatin1StringView(format)).toUtf8().constData(),
                          bytes);
}

TEST(PropertyListJudgedByPython, HasTheSameBinaryBytes)
{
    const QByteArray ours = binaryPropertyList(sample()).bytes;

    EXPECT_EQ(rewrittenByPython(ours, "FMT_BINARY").toHex(), ours.toHex());
}

TEST(PropertyListJudgedByPython, HasTheSameBinaryBytesWithMoreObjectsThanTwoBytesCount)
{
    QVariantList list;
    for (int i = 0; i < 100'000; ++i)
        list << (i % 2 == 0 ? QVariant(text("text %1").arg(i / 4)) : QVariant(i));

    const QByteArray ours = binaryPropertyList(list).bytes;

    EXPECT_TRUE(rewrittenByPython(ours, "FMT_BINARY") == ours);
}

TEST(PropertyListJudgedByPython, MeansTheSameFromBinaryToXML)
{
    const PropertyListReading read =
        parsePropertyList(rewrittenByPython(binaryPropertyList(sample()).bytes, "FMT_XML"));

    EXPECT_EQ(read.format, PropertyListFormat::XML);
    EXPECT_EQ(spelled(read.value), spelled(sample()));
}

TEST(PropertyListJudgedByPython, MeansTheSameFromXMLToBinary)
{
    const PropertyListReading read =
        parsePropertyList(rewrittenByPython(xmlPropertyList(sample()).bytes, "FMT_BINARY"));

    EXPECT_EQ(read.format, PropertyListFormat::Binary);
    EXPECT_EQ(spelled(read.value), spelled(sample()));
}

TEST(PropertyListJudgedByPython, HoldsTheValuesThatPythonSees)
{
    constexpr char kCheck[] = R"(
import datetime, plistlib, sys
value = plistlib.loads(sys.stdin.buffer.read())
assert value["bool"] is True
assert value["largest"] == 2**64 - 1 and value["smallest"] == -2**63 and value["signed"] == 2**63 - 1
assert type(value["whole"]) is float and value["double"] == 0.1
assert value["date"] == datetime.datetime(2025, 7, 30, 12, 34, 56)
assert value["early"] == datetime.datetime(1962, 2, 20, 14, 47, 39)
assert value["data"] == bytes([0, 1, 254, 255])
assert value["text"] == "größer € \U0001F600 <&> \n\t"
assert len(value["many"]) == 300 and value["many"][299] == "line 299"
assert value["empty"] == [{}, [], "", b""]
print("same")
)";

    EXPECT_EQ(outputOfPython(kCheck, binaryPropertyList(sample()).bytes), "same\n");
    EXPECT_EQ(outputOfPython(kCheck, xmlPropertyList(sample()).bytes), "same\n");
}

TEST(PropertyListJudgedByPython, ReadsWhatPythonWrites)
{
    constexpr char kWrite[] = R"(
import datetime, plistlib, sys
value = {"z": [True, 1, 1.0, -2**63, 2**63, 2**64 - 1], "a": plistlib.UID(70000), "n": None,
         "d": datetime.datetime(2025, 7, 30, 12, 34, 56, 789000), "s": "\u20ac", "b": bytearray(b"x" * 300)}
sys.stdout.buffer.write(plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False))
)";
    const QVariantMap expected{
        {text("z"),
         QVariantList{
             true, qlonglong(1), 1.0, std::numeric_limits<qlonglong>::min(), qulonglong(1) << 63, ~qulonglong(0)}},
        {text("a"), QVariant::fromValue(PropertyListUID{70000})},
        {text("n"), QVariant::fromValue(nullptr)},
        {text("d"), QDateTime(QDate(2025, 7, 30), QTime(12, 34, 56, 789), Qt::UTC)},
        {text("s"), text("€")},
        {text("b"), QByteArray(300, 'x')},
    };

    EXPECT_EQ(spelled(parsePropertyList(outputOfPython(kWrite)).value), spelled(expected));
}

TEST(PropertyListJudgedByPython, KeepsReferencesAndNullInBinary)
{
    constexpr char kCheck[] = R"(
import plistlib, sys
assert plistlib.loads(sys.stdin.buffer.read()) == [plistlib.UID(3), None, plistlib.UID(2**40)]
print("same")
)";
    const QVariantList list{QVariant::fromValue(PropertyListUID{3}),
                            QVariant::fromValue(nullptr),
                            QVariant::fromValue(PropertyListUID{quint64(1) << 40})};

    EXPECT_EQ(outputOfPython(kCheck, binaryPropertyList(list).bytes), "same\n");
}

QByteArray convertedByPlistutil(const QByteArray& bytes, const char* format)
{
    const QStringList arguments{text("-i"), text("-"), text("-o"), text("-"), text("-f"), text(format)};
    return outputOfProgram(text("plistutil"), arguments, bytes);
}

/// The sample without what this program cannot hold: it reads large unsigned numbers as signed.
QVariantMap sampleForPlistutil()
{
    QVariantMap map = sample();
    map.remove(text("largest"));
    return map;
}

TEST(PropertyListJudgedByPlistutil, MeansTheSameFromBinaryToXML)
{
    const QByteArray xml = convertedByPlistutil(binaryPropertyList(sampleForPlistutil()).bytes, "xml");

    EXPECT_EQ(spelled(parsePropertyList(xml).value), spelled(sampleForPlistutil()));
}

TEST(PropertyListJudgedByPlistutil, MeansTheSameFromXMLToBinary)
{
    const QByteArray binary = convertedByPlistutil(xmlPropertyList(sampleForPlistutil()).bytes, "bin");

    EXPECT_EQ(spelled(parsePropertyList(binary).value), spelled(sampleForPlistutil()));
}

} // namespace
} // namespace havrel
