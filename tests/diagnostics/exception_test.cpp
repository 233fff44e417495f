// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"

#include "foundation/description.h"
#include "foundation/error.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <clocale>
#include <functional>
#include <stdexcept>
#include <system_error>

namespace havrel {
namespace {

HVException io(const QString& reason = u"cannot delete item"_qs)
{
    return HVException::exceptionWithName(u"IO"_qs, reason);
}

// Factories

TEST(HVException, StartsWithNameReasonAndNoFacts)
{
    const auto exception = HVException::exceptionWithName(u"IO"_qs, u"cannot open"_qs);
    EXPECT_EQ(exception.name(), u"IO"_qs);
    EXPECT_EQ(exception.reason(), u"cannot open"_qs);
    EXPECT_TRUE(exception.userInfo().isEmpty());
    EXPECT_TRUE(exception.callStackReturnAddresses().empty());
    EXPECT_EQ(exception.className(), u"HVException"_qs);
}

TEST(HVException, ReadsErrnoAtTheCall)
{
    errno = ENOENT;
    const auto exception = HVException::errnoWithName(u"Security"_qs, u"no"_qs);
    EXPECT_EQ(exception.detail(detail_key::kPOSIXErr).toLongLong(), ENOENT);
    EXPECT_EQ(exception.detail(detail_key::kErrDescription).toString(), u"No such file or directory"_qs);
    EXPECT_EQ(exception.name(), u"Security"_qs);
}

TEST(HVException, NamesErrnoFailuresOfFilesIO)
{
    errno = EACCES;
    EXPECT_EQ(HVException::ioErrno(u"no"_qs).detail(detail_key::kPOSIXErr).toLongLong(), EACCES);
    EXPECT_EQ(HVException::ioErrno(EPERM, u"no"_qs).detail(detail_key::kPOSIXErr).toLongLong(), EPERM);
    EXPECT_EQ(HVException::ioErrno(EPERM, u"no"_qs).name(), u"IO"_qs);
}

TEST(HVException, SpeaksEnglishWhateverTheLocale)
{
    const QByteArray before = std::setlocale(LC_MESSAGES, nullptr);
    std::setlocale(LC_MESSAGES, "de_DE.UTF-8");
    EXPECT_EQ(systemErrorText(EACCES), u"Permission denied"_qs);
    std::setlocale(LC_MESSAGES, before.constData());
    EXPECT_EQ(systemErrorText(123456), u"Unknown error: 123456"_qs);
}

TEST(HVException, OfAnErrorCarriesIt)
{
    const Error error(u"Own"_qs, 7, {{error_key::kLocalizedDescription, u"bad thing"_qs}});
    const auto exception = HVException::error(error, u"Bug"_qs, u"general problem"_qs);
    EXPECT_EQ(exception.detail(detail_key::kWrappedError).value<Error>(), error);
    EXPECT_EQ(exception.detail(detail_key::kDescription), u"bad thing"_qs);
    EXPECT_FALSE(exception.userInfo().contains(detail_key::kError));
}

// Setters that store their argument under one key

struct StoreCase
{
    const char* label;
    HVException& (*set)(HVException&);
    QLatin1StringView key;
    QVariant expected;
};

class HVExceptionSetter : public ::testing::TestWithParam<StoreCase>
{
};

TEST_P(HVExceptionSetter, StoresUnderItsKeyAndAnswersTheReceiver)
{
    HVException exception = io();
    EXPECT_EQ(&GetParam().set(exception), &exception);
    EXPECT_EQ(exception.detail(GetParam().key), GetParam().expected);
    EXPECT_EQ(exception.userInfo().value(GetParam().key), GetParam().expected);
}

using E = HVException;
const QString kMine = u"Mine"_qs;

const std::array kStoreCases = {
    StoreCase{"detail", [](E& e) -> E& { return e.setDetail(5, kMine); }, QLatin1StringView("Mine"), 5},
    StoreCase{"nil", [](E& e) -> E& { return e.setDetail({}, kMine); }, QLatin1StringView("Mine"), u"(nil)"_qs},
    StoreCase{"nil_string", [](E& e) -> E& { return e.setStrPath({}); }, detail_key::kPath, u"(nil)"_qs},
    StoreCase{"empty_string", [](E& e) -> E& { return e.setStrPath(u""_qs); }, detail_key::kPath, u""_qs},
    StoreCase{"hex_zero", [](E& e) -> E& { return e.setHexDetail(0, kMine); }, QLatin1StringView("Mine"), u"0x0000"_qs},
    StoreCase{
        "hex_four", [](E& e) -> E& { return e.setHexDetail(65535, kMine); }, QLatin1StringView("Mine"), u"0xffff"_qs},
    StoreCase{"hex_eight",
              [](E& e) -> E& { return e.setHexDetail(65536, kMine); },
              QLatin1StringView("Mine"),
              u"0x00010000"_qs},
    StoreCase{"hex_more",
              [](E& e) -> E& { return e.setHexDetail(1ULL << 40, kMine); },
              QLatin1StringView("Mine"),
              u"0x10000000000"_qs},
    StoreCase{"hex_all",
              [](E& e) -> E& { return e.setHexDetail(~0ULL, kMine); },
              QLatin1StringView("Mine"),
              u"0xffffffffffffffff"_qs},
    StoreCase{"long_hex",
              [](E& e) -> E& { return e.setLongLongHexDetail(0xabc, kMine); },
              QLatin1StringView("Mine"),
              u"0x0000000000000abc"_qs},
    StoreCase{
        "decimal", [](E& e) -> E& { return e.setDecimalDetail(-3, kMine); }, QLatin1StringView("Mine"), qint64{-3}},
    StoreCase{"long_long",
              [](E& e) -> E& { return e.setLongLongDetail(1LL << 60, kMine); },
              QLatin1StringView("Mine"),
              1LL << 60},
    StoreCase{"posix_number", [](E& e) -> E& { return e.setPOSIXErr(EACCES); }, detail_key::kPOSIXErr, qint64{EACCES}},
    StoreCase{"posix_text",
              [](E& e) -> E& { return e.setPOSIXErr(EACCES); },
              detail_key::kErrDescription,
              u"Permission denied"_qs},
    StoreCase{"posix_api", [](E& e) -> E& { return e.setPOSIXErr(EACCES, u"open"_qs); }, detail_key::kAPI, u"open"_qs},
    StoreCase{"api", [](E& e) -> E& { return e.setAPI(u"rename"_qs); }, detail_key::kAPI, u"rename"_qs},
    StoreCase{"file", [](E& e) -> E& { return e.setFile(u"f"_qs); }, detail_key::kFile, u"f"_qs},
    StoreCase{"folder", [](E& e) -> E& { return e.setFolder(u"d"_qs); }, detail_key::kFolder, u"d"_qs},
    StoreCase{"object", [](E& e) -> E& { return e.setObject(12); }, detail_key::kObject, 12},
    StoreCase{"expected", [](E& e) -> E& { return e.setExpected(4); }, detail_key::kExpected, 4},
    StoreCase{"class", [](E& e) -> E& { return e.setClass(u"JNPath"_qs); }, detail_key::kClass, u"JNPath"_qs},
    StoreCase{"class_of", [](E& e) -> E& { return e.setClassOf(QVariantList{}); }, detail_key::kClass, u"NSArray"_qs},
    StoreCase{"class_of_nil", [](E& e) -> E& { return e.setClassOf({}); }, detail_key::kClass, u"(nil)"_qs},
    StoreCase{"explanation", [](E& e) -> E& { return e.setExplanation(u"why"_qs); }, detail_key::kExplain, u"why"_qs},
    StoreCase{"c_path", [](E& e) -> E& { return e.setCPath("/a\xFF"); }, detail_key::kPath, u"/a"_qs + QChar(0xDCFF)},
    StoreCase{"position", [](E& e) -> E& { return e.setFilePosition(1LL << 40); }, detail_key::kPosition, 1LL << 40},
    StoreCase{"length", [](E& e) -> E& { return e.setLength(9); }, detail_key::kLength, 9LL},
    StoreCase{"package_type", [](E& e) -> E& { return e.setPackageType(3); }, detail_key::kPkgType, u"File"_qs},
    StoreCase{"package_number", [](E& e) -> E& { return e.setPackageNumber(77); }, detail_key::kPkgNumber, qint64{77}},
    StoreCase{"message", [](E& e) -> E& { return e.setMessage(u"do:it:"_qs); }, detail_key::kMessage, u"do:it:"_qs},
    StoreCase{"message_to",
              [](E& e) -> E& { return e.setMessage(u"count"_qs, u"text"_qs); },
              detail_key::kMessage,
              u"[NSString count]"_qs},
    StoreCase{"message_to_nil",
              [](E& e) -> E& { return e.setMessage(u"count"_qs, {}); },
              detail_key::kMessage,
              u"[(null) count]"_qs},
    StoreCase{"version", [](E& e) -> E& { return e.setVersion(0x20103); }, detail_key::kVersion, u"2.1.3"_qs},
    StoreCase{"log_class",
              [](E& e) -> E& { return e.setPreferredLogClass(LogClassification::Curious); },
              detail_key::kLogClass,
              qint64{2}},
    StoreCase{"soft", [](E& e) -> E& { return e.setSoft(true); }, detail_key::kSoftError, true},
    StoreCase{"hard", [](E& e) -> E& { return e.setSoft(false); }, detail_key::kSoftError, false},
    StoreCase{"flag", [](E& e) -> E& { return e.setFlag(kMine); }, QLatin1StringView("Mine"), true},
    StoreCase{"cleared_flag_stays",
              [](E& e) -> E& { return e.setFlag(kMine).clearFlag(kMine); },
              QLatin1StringView("Mine"),
              false},
    StoreCase{
        "later_value_wins", [](E& e) -> E& { return e.setAPI(u"a"_qs).setAPI(u"b"_qs); }, detail_key::kAPI, u"b"_qs},
};

INSTANTIATE_TEST_SUITE_P(Cases, HVExceptionSetter, ::testing::ValuesIn(kStoreCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(HVException, KeepsOnlyTheFirst1024BytesOfAPath)
{
    const QByteArray longPath(2000, 'x');
    EXPECT_EQ(io().setCPath(longPath.constData()).detail(detail_key::kPath).toString().size(), 1024);
    const QByteArray cutCharacter = QByteArray(1023, 'x') + "\xC3\xA9";
    EXPECT_TRUE(io().setCPath(cutCharacter.constData()).detail(detail_key::kPath).toString().endsWith(QChar(0xDCC3)));
    EXPECT_TRUE(io().setCPath(nullptr).userInfo().isEmpty());
}

TEST(HVException, SharesItsFactsWithCopiesInPlace)
{
    HVException exception = io();
    HVException copy = exception; // NOLINT(performance-unnecessary-copy-initialization): the copy is the point
    copy.setAPI(u"rename"_qs);
    copy.details()[u"Own"_qs] = 1;
    EXPECT_EQ(exception.detail(detail_key::kAPI), u"rename"_qs);
    EXPECT_EQ(exception.detail(u"Own"_qs), 1);
    EXPECT_TRUE(exception.isSameObject(copy));
    EXPECT_FALSE(exception.isSameObject(io()));
}

// setError by domain

TEST(HVException, TakesThePOSIXCodeOfAnErrorAs32Bits)
{
    const auto exception = io().setError(Error(error_domain::kPOSIX, (1LL << 32) + EACCES));
    EXPECT_EQ(exception.detail(detail_key::kPOSIXErr), qint64{EACCES});
    EXPECT_EQ(exception.detail(detail_key::kErrDescription), u"Permission denied"_qs);
}

TEST(HVException, TakesTheReasonOfAPOSIXError)
{
    EXPECT_EQ(io().setError(Error::posix(ENOENT)).detail(detail_key::kError), u"No such file or directory"_qs);
}

TEST(HVException, TakesTheStatusAndTheURLOfErrors)
{
    EXPECT_EQ(io().setError(Error(error_domain::kOSStatus, -43)).detail(detail_key::kOSErr), qint64{-43});
    const Error url(error_domain::kURL, -1, {{error_key::kFailingURLString, u"http://x/"_qs}});
    EXPECT_EQ(io().setError(url).detail(detail_key::kPath), u"http://x/"_qs);
    EXPECT_FALSE(io().setError(Error(error_domain::kURL, -1)).userInfo().contains(detail_key::kPath));
    EXPECT_TRUE(io().setError(std::nullopt).userInfo().isEmpty());
}

// Objects that setters ask

struct Item
{
    QString itemName, itemPath;
    int itemType;
    [[nodiscard]] QString name() const { return itemName; }
    [[nodiscard]] QString path() const { return itemPath; }
    [[nodiscard]] int type() const { return itemType; }
};

struct ItemTypeCase
{
    int type;
    QVariant expected;
};

class HVExceptionFileInfo : public ::testing::TestWithParam<ItemTypeCase>
{
};

TEST_P(HVExceptionFileInfo, GivesNamePathAndType)
{
    const auto exception = io().setFileInfo(Item{u"a"_qs, u"/x/a"_qs, GetParam().type});
    EXPECT_EQ(exception.detail(detail_key::kName), u"a"_qs);
    EXPECT_EQ(exception.detail(detail_key::kPath), u"/x/a"_qs);
    EXPECT_EQ(exception.detail(detail_key::kType), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Types,
                         HVExceptionFileInfo,
                         ::testing::Values(ItemTypeCase{0, {}},
                                           ItemTypeCase{1, u"regular file"_qs},
                                           ItemTypeCase{2, u"directory"_qs},
                                           ItemTypeCase{5, u"symblic link"_qs},
                                           ItemTypeCase{3, qint64{3}},
                                           ItemTypeCase{9, qint64{9}}));

TEST(HVException, TakesThePathOfAnObject)
{
    EXPECT_EQ(io().setPathObject(Item{{}, u"/p"_qs, 1}).detail(detail_key::kPath), u"/p"_qs);
}

struct Package
{
    [[nodiscard]] static qint64 number() { return 42; }
    [[nodiscard]] static unsigned type() { return 5; }
};

TEST(HVException, TakesNumberAndTypeOfAPackage)
{
    const auto exception = io().setPackageInfo(Package{});
    EXPECT_EQ(exception.detail(detail_key::kPkgNumber), qint64{42});
    EXPECT_EQ(exception.detail(detail_key::kPkgType), u"Unknown(5)"_qs);
}

class FakeContent : public ContentSource
{
public:
    explicit FakeContent(bool failing)
        : m_failing(failing)
    {
    }
    [[nodiscard]] QString pathObject() const override { return u"/content"_qs; }
    [[nodiscard]] qint64 physicalAllocationAtPosition(qint64 from, qint64 to) const override
    {
        if (m_failing)
            io().raise();
        return to == from + 1 ? from + 5000 : -1;
    }

private:
    bool m_failing;
};

TEST(HVException, AsksContentWhereItsBytesLie)
{
    const FakeContent content(false);
    const auto exception = io().setContent(&content, 100);
    EXPECT_EQ(exception.detail(detail_key::kPath), u"/content"_qs);
    EXPECT_EQ(exception.detail(detail_key::kPosition), 100LL);
    EXPECT_EQ(exception.detail(detail_key::kPhysicalPosition), 5100LL);
}

TEST(HVException, KeepsWhatItHasWhenContentFails)
{
    const FakeContent content(true);
    const auto exception = io().setContent(&content, 100);
    EXPECT_EQ(exception.detail(detail_key::kPosition), 100LL);
    EXPECT_FALSE(exception.userInfo().contains(detail_key::kPhysicalPosition));
}

TEST(HVException, PutsNoContentAtPhysicalPositionZero)
{
    const auto exception = io().setContent(nullptr, 100);
    EXPECT_EQ(exception.detail(detail_key::kPath), u"(nil)"_qs);
    EXPECT_EQ(exception.detail(detail_key::kPosition), 100LL);
    EXPECT_EQ(exception.detail(detail_key::kPhysicalPosition), 0LL);
}

// Names, flags, classifications

struct PackageNameCase
{
    unsigned type;
    const char* name;
};

class PackageType : public ::testing::TestWithParam<PackageNameCase>
{
};

TEST_P(PackageType, HasAName)
{
    EXPECT_EQ(HVException::getNameForPackageType(GetParam().type), QString::fromLatin1(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(Names,
                         PackageType,
                         ::testing::Values(PackageNameCase{0, "Invalid"},
                                           PackageNameCase{1, "Data"},
                                           PackageNameCase{2, "List"},
                                           PackageNameCase{3, "File"},
                                           PackageNameCase{4, "Directory"},
                                           PackageNameCase{5, "Unknown(5)"},
                                           PackageNameCase{6, "Session"},
                                           PackageNameCase{7, "Unknown(7)"}));

struct LogClassCase
{
    const char* name;
    LogClassification expected;
};

class PreferredLogClass : public ::testing::TestWithParam<LogClassCase>
{
};

TEST_P(PreferredLogClass, FollowsTheName)
{
    const QString name = QString::fromLatin1(GetParam().name);
    EXPECT_EQ(HVException::preferredLogClassForName(name), GetParam().expected);
    EXPECT_EQ(HVException::exceptionWithName(name, {}).preferredLogClass(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Names,
                         PreferredLogClass,
                         ::testing::Values(LogClassCase{"Info", LogClassification::Plain},
                                           LogClassCase{"Cancel", LogClassification::Caution},
                                           LogClassCase{"Security", LogClassification::Warning},
                                           LogClassCase{"Bug", LogClassification::Debug},
                                           LogClassCase{"IO", LogClassification::Failure},
                                           LogClassCase{"bug", LogClassification::Failure},
                                           LogClassCase{"", LogClassification::Failure}));

TEST(PreferredLogClass, IsWhatTheExceptionSaysBeforeItsName)
{
    const auto bug = HVException::exceptionWithName(u"Bug"_qs, {}).setPreferredLogClass(LogClassification::Warning);
    EXPECT_EQ(bug.preferredLogClass(), LogClassification::Warning);
    EXPECT_EQ(HVException::preferredLogClassForException(bug), LogClassification::Warning);
    EXPECT_EQ(HVException::preferredLogClassForException(Exception(u"Bug"_qs, {})), LogClassification::Failure);
}

TEST(HVException, MapsFactsToClassifications)
{
    const auto& map = HVException::userInfoLogClassifications();
    for (const auto& key : {u"POSIXErr"_qs, u"OSErr"_qs, u"OSErrName"_qs, u"Path"_qs})
        EXPECT_EQ(map.value(key), LogClassification::Minutia) << qPrintable(key);
    for (const auto& key : {u"API"_qs, u"Object"_qs, u"PkgType"_qs, u"PkgNumber"_qs, u"Class"_qs, u"Cause"_qs})
        EXPECT_EQ(map.value(key), LogClassification::Debug) << qPrintable(key);
    EXPECT_EQ(map.size(), 10);
    EXPECT_EQ(&map, &HVException::userInfoLogClassifications());
}

TEST(HVException, CountsAnyPresentValueButANumberZeroAsFlag)
{
    const auto flagged = [](const QVariant& value) { return io().setDetail(value, u"F"_qs).hasFlag(u"F"_qs); };
    EXPECT_TRUE(flagged(u"no"_qs));
    EXPECT_TRUE(flagged(QVariantList{}));
    EXPECT_TRUE(flagged(QDateTime::currentDateTimeUtc()));
    EXPECT_TRUE(flagged({}));
    EXPECT_TRUE(flagged(2));
    EXPECT_FALSE(flagged(false));
    EXPECT_FALSE(flagged(0));
    EXPECT_FALSE(flagged(0.0));
    EXPECT_FALSE(io().hasFlag(u"F"_qs));
}

TEST(HVException, IsHardUntilSetSoft)
{
    EXPECT_TRUE(io().isHard());
    EXPECT_TRUE(io().setSoft(true).isSoft());
    EXPECT_TRUE(io().setSoft(true).setSoft(false).isHard());
}

// Description

struct DescriptionCase
{
    const char* label;
    QVariantMap facts;
    const char* expected;
};

class ExceptionDescription : public ::testing::TestWithParam<DescriptionCase>
{
};

TEST_P(ExceptionDescription, ShowsWhatIsNotPrivate)
{
    EXPECT_EQ(Exception(u"IO"_qs, u"no way"_qs, GetParam().facts).description(),
              QString::fromUtf8(GetParam().expected));
}

const std::array kDescriptionCases = {
    DescriptionCase{"no_facts", {}, "<IO> no way"},
    DescriptionCase{"only_private", {{u".Help"_qs, 1}}, "<IO> no way"},
    DescriptionCase{"one", {{u"A"_qs, 1}}, "<IO> no way { A=1 }"},
    DescriptionCase{"private_first", {{u".Z"_qs, 1}, {u"A"_qs, 1}, {u"B"_qs, 2}}, "<IO> no way { A=1, B=2 }"},
    DescriptionCase{"blank", {{u"A"_qs, u"x y"_qs}}, "<IO> no way { A='x y' }"},
    DescriptionCase{"tab", {{u"A"_qs, u"x\ty"_qs}}, "<IO> no way { A='x\ty' }"},
    DescriptionCase{"no_break_space", {{u"A"_qs, u"x\u00A0y"_qs}}, "<IO> no way { A='x\u00A0y' }"},
    DescriptionCase{"newline", {{u"A"_qs, u"x\ny"_qs}}, "<IO> no way { A=x\ny }"},
    DescriptionCase{"empty", {{u"A"_qs, u""_qs}}, "<IO> no way { A= }"},
};

INSTANTIATE_TEST_SUITE_P(Cases, ExceptionDescription, ::testing::ValuesIn(kDescriptionCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(HVException, DescribesAFailedDeletion)
{
    const auto exception = io().setPOSIXErr(EACCES).setStrPath(u"/x/y"_qs);
    EXPECT_EQ(exception.description(),
              u"<IO> cannot delete item { ErrDescription='Permission denied', POSIXErr=13, Path=/x/y }"_qs);
    EXPECT_STREQ(exception.what(), exception.description().toUtf8().constData());
}

// Conversions

TEST(Exception, IsSoftOnlyAsAnHVException)
{
    EXPECT_FALSE(Exception(u"IO"_qs, {}, {{detail_key::kSoftError, true}}).asSoftException());
    EXPECT_FALSE(io().asSoftException());
    const auto soft = io().setSoft(true);
    ASSERT_TRUE(soft.asSoftException());
    EXPECT_TRUE(soft.asSoftException()->isSameObject(soft));
}

TEST(Exception, SlicedIsStillWhatItWas)
{
    const HVException original = io().setAPI(u"rename"_qs);
    const Exception sliced = original; // NOLINT(cppcoreguidelines-slicing): the point
    ASSERT_TRUE(sliced.asHVException());
    EXPECT_EQ(sliced.asHVException()->detail(detail_key::kAPI), u"rename"_qs);
    EXPECT_FALSE(Exception(u"IO"_qs, {}).asHVException());
}

TEST(Exception, BecomesThePOSIXErrorItCarries)
{
    const Error error = io().setPOSIXErr(EACCES).asError();
    EXPECT_EQ(error.domain(), error_domain::kPOSIX);
    EXPECT_EQ(error.code(), EACCES);
    EXPECT_EQ(error.userInfo().value(error_key::kLocalizedFailureReason), u"cannot delete item"_qs);
    EXPECT_FALSE(error.userInfo().contains(error_key::kHelpAnchor));
}

TEST(Exception, PrefersTheWrappedErrorAndItsFacts)
{
    const Error wrapped(u"Own"_qs, 9, {{error_key::kLocalizedFailureReason, u"own reason"_qs}});
    const Error error = io().setPOSIXErr(EACCES).setError(wrapped).asError();
    EXPECT_EQ(error.domain(), u"Own"_qs);
    EXPECT_EQ(error.code(), 9);
    EXPECT_EQ(error.localizedFailureReason(), u"own reason"_qs);
}

TEST(Exception, PrefersPOSIXToStatus)
{
    EXPECT_EQ(io().setDecimalDetail(-43, detail_key::kOSErr).setPOSIXErr(2).asError().domain(), error_domain::kPOSIX);
    const Error status = io().setDecimalDetail((1LL << 32) - 43, detail_key::kOSErr).asError();
    EXPECT_EQ(status.domain(), error_domain::kOSStatus);
    EXPECT_EQ(status.code(), -43);
}

TEST(Exception, WithoutACodeBecomesAnErrorOfItsName)
{
    const Error error = Exception(u"Bug"_qs, u"lost count"_qs).asError();
    EXPECT_EQ(error.domain(), u"Bug"_qs);
    EXPECT_EQ(error.code(), -1);
    EXPECT_EQ(error.localizedDescription(), u"Bug error: lost count"_qs);
}

TEST(Exception, GivesTheErrorTheLastForeignPathAndTheHelpAnchor)
{
    const QVariantMap facts{
        {u"kDetailsDirectory"_qs, u"/d"_qs}, {u"kDetailsPath"_qs, u"/p"_qs}, {u".Help"_qs, u"anchor"_qs}};
    const Error error = Exception(u"X"_qs, {}, facts).asError();
    EXPECT_EQ(error.userInfo().value(error_key::kFilePath), u"/p"_qs);
    EXPECT_EQ(error.userInfo().value(error_key::kHelpAnchor), u"anchor"_qs);
    QVariantMap more = facts;
    more[u"kDetailsFilename"_qs] = u"f"_qs;
    EXPECT_EQ(Exception(u"X"_qs, {}, more).asError().userInfo().value(error_key::kFilePath), u"f"_qs);
}

// Raising

TEST(Exception, IsCaughtAsTheObjectThatWasRaised)
{
    const HVException original = io();
    try {
        original.raise();
    } catch (const HVException& caught) {
        EXPECT_TRUE(caught.isSameObject(original));
        EXPECT_FALSE(caught.callStackReturnAddresses().empty());
    }
}

TEST(Exception, KeepsTheStackOfItsFirstRaise)
{
    const Exception original(u"X"_qs, {});
    EXPECT_THROW(original.raise(), Exception);
    const auto first = original.callStackReturnAddresses();
    EXPECT_THROW(original.raise(), Exception);
    EXPECT_EQ(original.callStackReturnAddresses(), first);
}

TEST(Exception, RaisesFromAChainOfTemporaries)
{
    try {
        HVException::ioErrno(EACCES, u"cannot"_qs).setAPI(u"open"_qs).raise();
    } catch (const Exception& caught) {
        EXPECT_EQ(caught.userInfo().value(detail_key::kAPI), u"open"_qs);
        EXPECT_TRUE(caught.asHVException());
    }
}

Exception atTheWall(const std::function<void()>& block)
{
    try {
        block();
    } catch (...) {
        return Exception::fromCurrent();
    }
    return {};
}

TEST(Exception, EntersFromTheStandardLibraryWithTextAndType)
{
    const Exception entered = atTheWall([] { throw std::runtime_error("broken"); });
    EXPECT_EQ(entered.name(), u"std::exception"_qs);
    EXPECT_EQ(entered.reason(), u"broken"_qs);
    EXPECT_EQ(entered.userInfo().value(detail_key::kClass), u"std::runtime_error"_qs);
    EXPECT_EQ(HVException::preferredLogClassForException(entered), LogClassification::Failure);
}

TEST(Exception, EntersFromASystemErrorWithItsNumber)
{
    const Exception entered = atTheWall([] { throw std::system_error(EACCES, std::generic_category(), "open"); });
    EXPECT_EQ(entered.userInfo().value(detail_key::kPOSIXErr), qint64{EACCES});
    EXPECT_EQ(entered.asError().domain(), error_domain::kPOSIX);
}

TEST(Exception, EntersAsItselfOrAsUnknown)
{
    const HVException own = io();
    EXPECT_TRUE(atTheWall([&own] { own.raise(); }).isSameObject(own));
    const Exception entered = atTheWall([] { throw 5; }); // NOLINT(hicpp-exception-baseclass): what libraries may do
    EXPECT_EQ(entered.name(), u"Unknown"_qs);
    EXPECT_EQ(entered.userInfo().value(detail_key::kClass), u"int"_qs);
}

TEST(Exception, IsRaisedUnlessFailuresPersist)
{
    EXPECT_THROW(io().raiseOrPersist(), HVException);
    Exception::setPersistFailures(true);
    EXPECT_NO_THROW(io().raiseOrPersist());
    Exception::setPersistFailures(false);
    EXPECT_THROW(io().raiseOrPersist(), HVException);
}

TEST(Exception, IsDescribedInsideOtherValues)
{
    const auto outer = io().setCause(Exception(u"X"_qs, u"inner"_qs));
    EXPECT_EQ(outer.description(), u"<IO> cannot delete item { Cause='<X> inner' }"_qs);
    EXPECT_EQ(io().setCause(std::nullopt).detail(detail_key::kCause), u"(nil)"_qs);
}

TEST(Exception, IsDescribedAlsoWhenItIsItsOwnCause)
{
    HVException exception = io();
    exception.setCause(exception).setObject(QVariantList{QVariant::fromValue(Exception(exception))});
    const QString text = exception.description();
    const std::string what = exception.what();
    exception.details().clear(); // the circle would keep it alive
    EXPECT_EQ(text,
              u"<IO> cannot delete item { Cause='<IO> cannot delete item', Object='(<IO> cannot delete item)' }"_qs);
    EXPECT_EQ(what, text.toStdString());
}

TEST(Exception, IsDescribedAlsoWhenItCausedItsCause)
{
    HVException first = io();
    HVException second = io(u"other"_qs);
    first.setCause(second);
    second.setCause(first);
    const QString text = first.description();
    first.details().clear();
    EXPECT_EQ(text, u"<IO> cannot delete item { Cause='<IO> other { Cause='<IO> cannot delete item' }' }"_qs);
}

TEST(Exception, IsDescribedWithinBoundsHoweverManyTimesItHoldsOthers)
{
    HVException outermost = io();
    for (int i = 0; i < 40; ++i) { // 2^40 paths from the outermost to the innermost
        const HVException inner = outermost;
        outermost = io().setCause(inner).setObject(QVariant::fromValue(Exception(inner)));
    }
    EXPECT_LT(outermost.description().size(), 20000);
    EXPECT_EQ(io().description(), u"<IO> cannot delete item"_qs); // and the next one starts anew
}

TEST(HVException, StoresAnotherExceptionInTheFormThatReadersLookFor)
{
    const HVException cause = io(u"inner"_qs);
    HVException exception = io();
    exception.setDetail(QVariant::fromValue(cause), detail_key::kCause);
    EXPECT_TRUE(exception.detail(detail_key::kCause).value<Exception>().isSameObject(cause));
}

TEST(Exception, ShowsThatNameAndReasonAreMissing)
{
    EXPECT_EQ(Exception().description(), u"<(null)> (null)"_qs);
    EXPECT_EQ(Exception().asError().localizedDescription(), u"(null) error: (null)"_qs);
    EXPECT_EQ(Exception(u""_qs, u""_qs).description(), u"<> "_qs);
}

} // namespace
} // namespace havrel
