// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_ident.h"
#include "diagnostics/log_line_pin.h"
#include "foundation/archiving.h"
#include "tests/support/archive_expectations.h"
#include "tests/support/key_table_coder.h"
#include "tests/support/unkeyed_coder.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

/// A line with a parent, three children, and lines of two classifications below it.
LogLineIdentPtr someLine()
{
    const auto line = LogLineIdent::logLineIdentifierFromString(QStringLiteral("6.73946250.4312"));
    for (int i = 0; i < 3; ++i)
        (void)line->next();
    line->noteClassification(LogClassification::Failure);
    line->noteClassification(LogClassification::Debug);
    return line;
}

void expectSame(const LogLineIdentPtr& restored, const LogLineIdentPtr& line)
{
    ASSERT_NE(restored, nullptr);
    EXPECT_EQ(restored->description(), line->description());
    EXPECT_EQ(restored->depth(), line->depth());
    EXPECT_EQ(restored->classifications(), line->classifications());
    EXPECT_EQ(restored->count(), line->count());
    EXPECT_EQ(restored->next()->sequence(), line->count() + 1);
}

TEST(ArchivedLogLine, HasItsFieldsUnderTheirKeys)
{
    const auto line = someLine();
    KeyTableEncoder encoder;
    line->encodeWithCoder(encoder);
    EXPECT_EQ(
        encoder.table.keys(),
        (QStringList{
            QStringLiteral("classmap"), QStringLiteral("parent"), QStringLiteral("seq"), QStringLiteral("subseq")}));
    EXPECT_EQ(encoder.table.value(QStringLiteral("parent")).value<LogLineIdentPtr>(), line->parent());
    EXPECT_EQ(encoder.table.value(QStringLiteral("classmap")).toLongLong(), (1 << 5) | (1 << 9));
    EXPECT_EQ(encoder.table.value(QStringLiteral("seq")).toLongLong(), 4312);
    EXPECT_EQ(encoder.table.value(QStringLiteral("subseq")).toLongLong(), 3);
    KeyTableDecoder decoder(encoder.table);
    expectSame(LogLineIdent::withCoder(decoder), line);
}

TEST(ArchivedLogLine, HasItsFieldsInOrderWithoutKeys)
{
    const auto line = someLine();
    UnkeyedEncoder encoder;
    line->encodeWithCoder(encoder);
    ASSERT_EQ(encoder.fields.size(), 4);
    EXPECT_EQ(encoder.fields[0].value<LogLineIdentPtr>(), line->parent());
    EXPECT_EQ(encoder.fields[1].toUInt(), (1U << 5) | (1U << 9));
    EXPECT_EQ(encoder.fields[2].toUInt(), 4312U);
    EXPECT_EQ(encoder.fields[3].toUInt(), 3U);
    UnkeyedDecoder decoder(encoder.fields);
    expectSame(LogLineIdent::withCoder(decoder), line);
}

TEST(ArchivedLogLine, HasNilForTheParentOfTheTop)
{
    const auto top = std::make_shared<LogLineIdent>(nullptr, 18446744073709551615U);
    KeyTableEncoder encoder;
    top->encodeWithCoder(encoder);
    EXPECT_FALSE(encoder.table.value(QStringLiteral("parent")).isValid());
    KeyTableDecoder decoder(encoder.table);
    expectSame(LogLineIdent::withCoder(decoder), top);
}

TEST(ArchivedLogLine, ComesBackWithItsAncestors)
{
    const auto line = someLine();
    const QByteArray archive = dataForRootObject(QVariant::fromValue(line), SecureCoding::Yes);
    const QVariant restored = archivedObjectOfClass(archive, QStringLiteral("LogLineIdent"));
    expectSame(restored.value<LogLineIdentPtr>(), line);
}

TEST(ArchivedLogLine, IsRefusedAsABugWhenItLiesTooDeep)
{
    const auto lineOfDepth = [](int components) {
        return LogLineIdent::logLineIdentifierFromString(QStringLiteral("1") +
                                                         QStringLiteral(".1").repeated(components - 1));
    };
    const auto archived = [](const LogLineIdentPtr& line) {
        return dataForRootObject(QVariant::fromValue(line), SecureCoding::Yes);
    };
    const auto deepest = lineOfDepth(200);
    expectSame(archivedObjectOfClass(archived(deepest), QStringLiteral("LogLineIdent")).value<LogLineIdentPtr>(),
               deepest);
    expectBug([&] { return archived(lineOfDepth(300)); }, "cannot encode object", "deeper than 256 levels");
}

TEST(ArchivedLogLine, StaysAPin)
{
    const auto pin = someLine()->pinned();
    const QByteArray archive = dataForRootObject(QVariant::fromValue(pin), SecureCoding::Yes);
    for (const char* className : {"LogLineIdent", "LogLinePin"}) {
        const auto restored = archivedObjectOfClass(archive, QString::fromLatin1(className)).value<LogLineIdentPtr>();
        ASSERT_NE(dynamic_cast<LogLinePin*>(restored.get()), nullptr) << className;
        EXPECT_TRUE(restored->isEqual(*pin));
        EXPECT_EQ(restored->next(), restored);
    }
}

TEST(ArchivedLogLine, IsRefusedWhereAnotherClassIsAskedFor)
{
    const QByteArray archive = dataForRootObject(QVariant::fromValue(someLine()));
    EXPECT_THROW((void)archivedObjectOfClass(archive, QStringLiteral("LogLinePin")), HVException);
    EXPECT_THROW((void)archivedObjectOfClass(archive, QStringLiteral("NSString")), HVException);
}

TEST(ArchivedLogLine, ReadsMissingFieldsAsNothing)
{
    KeyTableDecoder decoder({});
    const auto line = LogLineIdent::withCoder(decoder);
    EXPECT_EQ(line->description(), QStringLiteral("0"));
    EXPECT_EQ(line->count(), 0U);
    EXPECT_EQ(line->classifications(), 0U);
}

TEST(ArchivedLogLine, TakesNoParentThatIsNone)
{
    KeyTableDecoder decoder({{QStringLiteral("parent"), 7}, {QStringLiteral("seq"), 5}});
    EXPECT_EQ(LogLineIdent::withCoder(decoder)->description(), QStringLiteral("5"));
}

} // namespace
} // namespace havrel
