// SPDX-License-Identifier: MIT
#include "cli/exported_preferences.h"

#include "foundation/property_list.h"

#include <QVariantMap>

#include <gtest/gtest.h>

#include <array>

namespace havrel::cli {
namespace {

QByteArray record(const QVariantMap& dictionary)
{
    return binaryPropertyList(dictionary).bytes;
}

QByteArray excluding()
{
    return record({{QStringLiteral("capture"), QStringLiteral("exclude")}});
}

TEST(ExportedPreferences, AreReadableWhereTheBytesComeBackExactly)
{
    EXPECT_EQ(jsonOfExported({"a b", excluding()}), R"({"path":"a b","preferences":{"capture":"exclude"}})");
}

TEST(ExportedPreferences, CarryTheBytesThemselvesWhereTheyWouldNot)
{
    EXPECT_EQ(jsonOfExported({"a", "nonsense"}), R"({"path":"a","preferences":null,"attribute":"bm9uc2Vuc2U="})");
    EXPECT_EQ(jsonOfExported({"a", ""}), R"({"path":"a","preferences":null,"attribute":""})");
    const QByteArray xml = "<plist version=\"1.0\"><dict/></plist>";
    EXPECT_EQ(jsonOfExported({"a", xml}), R"({"path":"a","preferences":{},"attribute":")" + xml.toBase64() + "\"}");
}

TEST(ExportedPreferences, ComeBackExactlyWhateverTheBytes)
{
    QByteArray allBytes;
    for (int byte = 0; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    const std::array values = {
        excluding(),
        record({}),
        record({{QStringLiteral("x"), QByteArray("data")}, {QStringLiteral("real"), 1.5}}),
        record({{QStringLiteral("long"), QByteArray(5000, 'x')}}),
        QByteArray(),
        allBytes,
        excluding().chopped(1),
        QByteArray("<plist version=\"1.0\"><dict><key>a</key><date>2001-01-01T00:00:00Z</date></dict></plist>"),
    };
    for (const QByteArray& bytes : values) {
        const ExportedReading again = exportedOfJson(jsonOfExported({"bad\xff\n", bytes}));
        EXPECT_TRUE(again.fault.isNull()) << again.fault.toStdString();
        EXPECT_EQ(again.record.path, "bad\xff\n");
        EXPECT_EQ(again.record.bytes, bytes);
    }
}

TEST(ExportedPreferences, MayBeWhatWasShown)
{
    const ExportedReading reading =
        exportedOfJson(R"({"path":"a","preferences":{"capture":"exclude"},"description":"excluded"})");

    EXPECT_TRUE(reading.fault.isNull());
    EXPECT_EQ(reading.record.bytes, excluding());
}

TEST(ExportedPreferences, MayBeWhatWasShownOfAnItemWithout)
{
    const ExportedReading reading = exportedOfJson(R"({"path":"a","preferences":null,"description":"normal"})");

    EXPECT_TRUE(reading.fault.isNull());
    EXPECT_TRUE(reading.hasNoRecord);
    EXPECT_FALSE(exportedOfJson(R"({"path":"a","preferences":null,"attribute":""})").hasNoRecord);
    EXPECT_FALSE(exportedOfJson(R"({"path":"a","preferences":{}})").hasNoRecord);
}

struct NonsenseRow
{
    const char* line;
    const char* fault;
};

TEST(ExportedPreferences, RefuseNonsenseAndSayWhat)
{
    constexpr auto kRows = std::to_array<NonsenseRow>({
        {"", "not JSON: a value is expected (byte 1)"},
        {"{\"path\":\"a\",", "not JSON: a key in quotes is expected (byte 13)"},
        {"[]", "not an object"},
        {"null", "not an object"},
        {R"({"preferences":{}})", "\"path\" wants a string that is not empty"},
        {R"({"path":"","preferences":{}})", "\"path\" wants a string that is not empty"},
        {R"({"path":1,"preferences":{}})", "\"path\" wants a string that is not empty"},
        {R"({"path":"a\u0000b","preferences":{}})", "\"path\" holds what no path can"},
        {R"({"path":"a\ud800","preferences":{}})", "\"path\" holds what no path can"},
        {R"({"path":"a"})", "neither \"preferences\" nor \"attribute\""},
        {R"({"preferences":null})", "\"path\" wants a string that is not empty"},
        {R"({"path":"a","preferences":[]})", "\"preferences\" wants an object"},
        {R"({"path":"a","preferences":"exclude"})", "\"preferences\" wants an object"},
        {R"({"path":"a","preferences":{"$data":"YQ=="}})", "\"preferences\" wants a dictionary"},
        {R"({"path":"a","preferences":{"x":{"$data":5}}})", "\"$data\" wants a string of base64"},
        {R"({"path":"a","attribute":5})", "\"attribute\" wants a string of base64"},
        {R"({"path":"a","attribute":"%"})", "\"attribute\" wants a string of base64"},
        {R"({"path":"a","preferences":{"capture":"exclude"},"attribute":"YQ=="})",
         "\"preferences\" and \"attribute\" differ; remove the one that is wrong"},
        {R"({"path":"a","preferences":{},"mode":5})", "an unknown key: mode"},
    });
    for (const NonsenseRow& row : kRows)
        EXPECT_EQ(exportedOfJson(row.line).fault.toStdString(), row.fault) << row.line;
}

} // namespace
} // namespace havrel::cli
