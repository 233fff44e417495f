// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "foundation/archiving.h"
#include "foundation/description.h"
#include "foundation/error.h"
#include "foundation/index_set.h"
#include "foundation/property_list.h"
#include "tests/support/archive_expectations.h"
#include "tests/support/forked_child.h"
#include "tests/support/spelled_value.h"
#include "tests/support/temporary_tree.h"

#include <QFile>
#include <QUrl>

#include <gtest/gtest.h>

namespace havrel {
namespace {

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

HVException failure()
{
    return HVException::ioErrno(13, latin("cannot delete item")).setStrPath(latin("/x/y"));
}

Exception roundTrip(const Exception& exception)
{
    return Exception::exceptionFromData(exception.dataForException());
}

TEST(ExceptionArchiving, KeepsNameReasonAndFacts)
{
    HVException exception = failure();
    exception.setSoft(true).setHexDetail(255, latin("Flags")).setDetail(QVariant(), latin("Missing"));
    exception.setDetail(QVariantList{1, QByteArray("x")}, latin("List")).setDetail(nullObject(), latin("Null"));

    const Exception restored = roundTrip(exception);

    EXPECT_EQ(restored.name(), latin("IO"));
    EXPECT_EQ(restored.reason(), latin("cannot delete item"));
    EXPECT_EQ(restored.userInfo(), exception.userInfo());
    EXPECT_EQ(restored.description(), exception.description());
    EXPECT_EQ(restored.className(), latin("HVException"));
    ASSERT_TRUE(restored.asSoftException());
    EXPECT_FALSE(restored.isSameObject(exception));
}

TEST(ExceptionArchiving, KeepsAPlainExceptionPlain)
{
    const Exception restored = roundTrip(Exception(latin("NSRangeException"), latin("beyond"), {{latin("a"), 1}}));

    EXPECT_EQ(restored.className(), latin("NSException"));
    EXPECT_FALSE(restored.asHVException());
    EXPECT_EQ(restored.userInfo(), (QVariantMap{{latin("a"), 1}}));
}

TEST(ExceptionArchiving, KeepsNestedCausesAndErrors)
{
    const Error error(latin("FilterDef"), 3, {{error_key::kUnderlyingError, QVariant::fromValue(Error::posix(28))}});
    const HVException inner = HVException::error(error, latin("Security"), latin("inner"));
    HVException outer = failure();
    outer.setCause(HVException(latin("IO"), latin("middle")).setCause(inner));

    const Exception restored = roundTrip(outer);
    const auto middle = restored.userInfo().value(detail_key::kCause).value<Exception>();
    const auto innermost = middle.userInfo().value(detail_key::kCause).value<Exception>();

    EXPECT_EQ(middle.reason(), latin("middle"));
    EXPECT_EQ(innermost.name(), latin("Security"));
    EXPECT_EQ(innermost.asError(), inner.asError());
    EXPECT_EQ(innermost.userInfo().value(detail_key::kWrappedError).value<Error>(), error);
}

TEST(ExceptionArchiving, CanBeSetFurtherAfterItCameBack)
{
    auto restored = roundTrip(failure()).asHVException();
    ASSERT_TRUE(restored);

    restored->setLength(7);

    EXPECT_EQ(restored->userInfo().value(detail_key::kLength), QVariant(7));
}

TEST(ExceptionArchiving, LeavesBehindWhereItWasRaised)
{
    try {
        failure().raise();
    } catch (const Exception& raised) {
        EXPECT_FALSE(raised.callStackReturnAddresses().empty());
        EXPECT_TRUE(roundTrip(raised).callStackReturnAddresses().empty());
    }
}

TEST(ExceptionArchiving, KeepsTheTextOfWhatCannotBeArchived)
{
    HVException exception = failure();
    exception.setObject(QUrl(latin("file:///x")));
    exception.setDetail(QVariantList{QUrl(latin("file:///y")), QVariantMap{{latin("d"), QDateTime()}}}, latin("List"));
    exception.setExpected(QVariant::fromValue(PropertyListUID{1}));

    const QVariantMap facts = roundTrip(exception).userInfo();

    EXPECT_EQ(facts.value(detail_key::kObject), latin("file:///x"));
    EXPECT_EQ(facts.value(latin("List")).toList().value(0), latin("file:///y"));
    EXPECT_EQ(facts.value(latin("List")).toList().value(1).toMap().value(latin("d")).typeId(), int(QMetaType::QString));
    EXPECT_EQ(facts.value(detail_key::kExpected), descriptionOf(QVariant::fromValue(PropertyListUID{1})));
    EXPECT_EQ(facts.value(detail_key::kPOSIXErr), QVariant(13));
}

TEST(ExceptionArchiving, KeepsObjectsOfArchivableClasses)
{
    HVException exception = failure();
    exception.setObject(QVariant::fromValue(IndexSet{1, 2}));

    EXPECT_EQ(roundTrip(exception).userInfo().value(detail_key::kObject).value<IndexSet>(), (IndexSet{1, 2}));
}

TEST(ExceptionArchiving, ReplacesAnExceptionInsideItselfByItsText)
{
    HVException exception = failure();
    HVException middle(latin("Bug"), latin("middle"));
    middle.setCause(exception);
    exception.setCause(middle);

    const Exception restored = roundTrip(exception);
    const auto cause = restored.userInfo().value(detail_key::kCause).value<Exception>();

    EXPECT_EQ(cause.reason(), latin("middle"));
    EXPECT_EQ(cause.userInfo().value(detail_key::kCause), latin("<IO> cannot delete item"));
    exception.details().clear(); // or the two would keep each other alive
}

TEST(ExceptionArchiving, CutsAnEndlessChainOfCausesInsteadOfFailing)
{
    HVException exception = failure();
    for (int i = 0; i < 1000; ++i)
        exception = HVException(latin("IO"), latin("cause")).setCause(exception);

    Exception restored = roundTrip(exception);
    int depth = 0;
    while (restored.userInfo().value(detail_key::kCause).metaType() == QMetaType::fromType<Exception>()) {
        restored = restored.userInfo().value(detail_key::kCause).value<Exception>();
        ++depth;
    }

    EXPECT_GE(depth, 64);
    EXPECT_EQ(restored.userInfo().value(detail_key::kCause), latin("<IO> cause"));
}

TEST(ExceptionArchiving, KeepsDetailsThatNestAsDeepAsAPropertyList)
{
    QVariantList deep{latin("bottom")};
    for (int i = 1; i < 40; ++i)
        deep = QVariantList{QVariant(deep)};
    HVException exception = failure();
    exception.setDetail(deep, latin("Deep"));

    EXPECT_EQ(spelled(roundTrip(exception).userInfo().value(latin("Deep"))), spelled(deep));
}

TEST(ExceptionArchiving, SharesACauseThatIsReachedTwice)
{
    const HVException cause(latin("IO"), latin("shared"));
    HVException exception = failure();
    exception.setCause(cause).setDetail(QVariant::fromValue<Exception>(cause), latin("Other"));

    const QVariantMap facts = roundTrip(exception).userInfo();

    EXPECT_TRUE(facts.value(detail_key::kCause)
                    .value<Exception>()
                    .isSameObject(facts.value(latin("Other")).value<Exception>()));
}

TEST(ExceptionArchiving, TakesAnHVExceptionThatWasNotSliced)
{
    const QVariant restored =
        archivedObjectOfClass(dataForRootObject(QVariant::fromValue(failure())), latin("HVException"));

    EXPECT_EQ(restored.value<Exception>().description(), failure().description());
}

TEST(ExceptionArchiving, RefusesDataThatHoldsNoException)
{
    constexpr auto kReason = "invalid archive data";

    expectBug([] { return Exception::exceptionFromData("noise"); }, kReason, "neither a binary nor an XML");
    expectBug(
        [] { return Exception::exceptionFromData(dataForRootObject(latin("a"))); }, kReason, "“NSString” where only");
    expectBug(
        [] { return Exception::exceptionFromData(dataForRootObject(QVariant())); }, kReason, "nil and no exception");
}

TEST(ExceptionArchiving, RefusesAPlainExceptionWhereAnHVExceptionIsAskedFor)
{
    const QByteArray data = Exception(latin("a"), latin("b")).dataForException();

    EXPECT_NO_THROW((void)archivedObjectOfClass(data, latin("NSException")));
    expectBug(
        [&] { return archivedObjectOfClass(data, latin("HVException")); }, "invalid archive data", "“NSException”");
}

TEST(ExceptionArchiving, KeepsWhatNoTextHolds)
{
    const Exception restored = roundTrip(Exception(QString(), QString()));

    EXPECT_TRUE(restored.name().isNull());
    EXPECT_TRUE(restored.reason().isNull());
    EXPECT_TRUE(restored.userInfo().isEmpty());
}

TEST(ExceptionArchiving, TravelsToAnotherProcess)
{
    const TemporaryTree tree{};
    const QString file = QString::fromStdString(tree.path("exception"));
    const auto makeAndArchive = [&] {
        HVException cause = HVException::error(Error::posix(28), latin("Security"), latin("full"));
        QFile target(file);
        const QByteArray data = failure().setCause(cause).dataForException();
        return target.open(QIODevice::WriteOnly) && target.write(data) == data.size() ? 0 : 1;
    };
    ASSERT_EQ(resultInForkedChild(makeAndArchive), 0);

    QFile source(file);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const Exception restored = Exception::exceptionFromData(source.readAll());
    const auto cause = restored.userInfo().value(detail_key::kCause).value<Exception>();

    EXPECT_EQ(restored.reason(), latin("cannot delete item"));
    EXPECT_EQ(cause.userInfo().value(detail_key::kPOSIXErr), QVariant(28));
    EXPECT_EQ(cause.asError().domain(), error_domain::kPOSIX);
}

} // namespace
} // namespace havrel
