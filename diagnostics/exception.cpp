// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"

#include "diagnostics/exception_body.h"
#include "foundation/description.h"
#include "foundation/error.h"
#include "platform/file_names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace havrel {
namespace {

/// The longest file-system path that setCPath keeps, in bytes.
constexpr std::size_t kMostPathBytes = 1024;

struct NamedPackageType
{
    unsigned type;
    QLatin1StringView name;
};

/// 5 is no package type, on purpose.
constexpr auto kPackageTypes = std::to_array<NamedPackageType>({
    {0, QLatin1StringView("Invalid")},
    {1, QLatin1StringView("Data")},
    {2, QLatin1StringView("List")},
    {3, QLatin1StringView("File")},
    {4, QLatin1StringView("Directory")},
    {6, QLatin1StringView("Session")},
});

struct NamedLogClass
{
    QLatin1StringView name;
    LogClassification classification;
};

constexpr auto kLogClasses = std::to_array<NamedLogClass>({
    {QLatin1StringView("Info"), LogClassification::Plain},
    {QLatin1StringView("Cancel"), LogClassification::Caution},
    {QLatin1StringView("Security"), LogClassification::Warning},
    {QLatin1StringView("Bug"), LogClassification::Debug},
});

struct NamedItemType
{
    int type;
    QLatin1StringView name;
};

/// Item types with a name; the spelling of the last is the one that readers of logs search for.
constexpr auto kItemTypes = std::to_array<NamedItemType>({
    {1, QLatin1StringView("regular file")},
    {2, QLatin1StringView("directory")},
    {5, QLatin1StringView("symblic link")},
});

bool isNil(const QVariant& value)
{
    return !value.isValid() || (value.typeId() == QMetaType::QString && value.toString().isNull());
}

QString hexText(quint64 value, int digits)
{
    return QStringLiteral("0x%1").arg(value, digits, 16, QLatin1Char('0'));
}

} // namespace

HVException::HVException(const QString& name, const QString& reason)
    : Exception(Kind::HV, name, reason)
{
}

HVException::HVException(const Exception& same)
    : Exception(same)
{
}

HVException HVException::exceptionWithName(const QString& name, const QString& reason)
{
    return HVException(name, reason);
}

HVException HVException::error(const Error& error, const QString& name, const QString& reason)
{
    return HVException(name, reason).setError(error);
}

HVException HVException::errnoWithName(const QString& name, const QString& reason)
{
    return errnoWithName(errno, name, reason);
}

HVException HVException::errnoWithName(int errnoValue, const QString& name, const QString& reason)
{
    return HVException(name, reason).setPOSIXErr(errnoValue);
}

HVException HVException::ioErrno(const QString& reason)
{
    return ioErrno(errno, reason);
}

HVException HVException::ioErrno(int errnoValue, const QString& reason)
{
    return errnoWithName(errnoValue, exception_name::kIO, reason);
}

LogClassification HVException::preferredLogClassForName(const QString& name)
{
    const auto row =
        std::find_if(kLogClasses.begin(), kLogClasses.end(), [&name](const auto& each) { return each.name == name; });
    return row == kLogClasses.end() ? LogClassification::Failure : row->classification;
}

LogClassification HVException::preferredLogClassForException(const Exception& exception)
{
    const auto own = exception.asHVException();
    return own ? own->preferredLogClass() : LogClassification::Failure;
}

QString HVException::getNameForPackageType(unsigned type)
{
    const auto row = std::find_if(
        kPackageTypes.begin(), kPackageTypes.end(), [type](const auto& each) { return each.type == type; });
    return row == kPackageTypes.end() ? QStringLiteral("Unknown(%1)").arg(static_cast<int>(type)) : QString(row->name);
}

const UserInfoLogClassifications& HVException::userInfoLogClassifications()
{
    using enum LogClassification;
    static const UserInfoLogClassifications map{
        {detail_key::kPOSIXErr, Minutia},
        {detail_key::kOSErr, Minutia},
        {detail_key::kOSErrName, Minutia},
        {detail_key::kPath, Minutia},
        {detail_key::kAPI, Debug},
        {detail_key::kObject, Debug},
        {detail_key::kPkgType, Debug},
        {detail_key::kPkgNumber, Debug},
        {detail_key::kClass, Debug},
        {detail_key::kCause, Debug},
    };
    return map;
}

QVariant HVException::detail(const QString& key) const
{
    return userInfo().value(key);
}

HVException& HVException::setDetail(const QVariant& value, const QString& key)
{
    if (value.metaType() == QMetaType::fromType<HVException>()) // kept in the one form that readers look for
        details().insert(key, QVariant::fromValue(Exception(*static_cast<const HVException*>(value.constData()))));
    else
        details().insert(key, isNil(value) ? QVariant(QStringLiteral("(nil)")) : value);
    return *this;
}

HVException& HVException::setHexDetail(quint64 value, const QString& key)
{
    return setDetail(hexText(value, value < 0x10000 ? 4 : 8), key);
}

HVException& HVException::setLongLongHexDetail(quint64 value, const QString& key)
{
    return setDetail(hexText(value, 16), key);
}

HVException& HVException::setDecimalDetail(qint64 value, const QString& key)
{
    return setDetail(value, key);
}

HVException& HVException::setLongLongDetail(qint64 value, const QString& key)
{
    return setDetail(value, key);
}

HVException& HVException::setPOSIXErr(int errnoValue)
{
    setDecimalDetail(errnoValue, detail_key::kPOSIXErr);
    return setDetail(systemErrorText(errnoValue), detail_key::kErrDescription);
}

HVException& HVException::setPOSIXErr(int errnoValue, const QString& api)
{
    return setPOSIXErr(errnoValue).setAPI(api);
}

HVException& HVException::setError(const std::optional<Error>& error)
{
    if (!error)
        return *this;
    setDetail(QVariant::fromValue(*error), detail_key::kWrappedError);
    if (error->domain() == error_domain::kPOSIX)
        setPOSIXErr(static_cast<qint32>(error->code()));
    else if (error->domain() == error_domain::kOSStatus)
        setDecimalDetail(error->code(), detail_key::kOSErr);
    else if (const QVariant url = error->userInfo().value(error_key::kFailingURLString);
             error->domain() == error_domain::kURL && url.isValid())
        setStrPath(url.toString());
    setDetail(error->localizedDescription(), detail_key::kDescription);
    if (const QString reason = error->localizedFailureReason(); !reason.isNull())
        setDetail(reason, detail_key::kError);
    return *this;
}

HVException& HVException::setAPI(const QString& api)
{
    return setDetail(api, detail_key::kAPI);
}

HVException& HVException::setFile(const QVariant& file)
{
    return setDetail(file, detail_key::kFile);
}

HVException& HVException::setFolder(const QVariant& folder)
{
    return setDetail(folder, detail_key::kFolder);
}

HVException& HVException::setObject(const QVariant& object)
{
    return setDetail(object, detail_key::kObject);
}

HVException& HVException::setStrPath(const QString& path)
{
    return setDetail(path, detail_key::kPath);
}

HVException& HVException::setExpected(const QVariant& expected)
{
    return setDetail(expected, detail_key::kExpected);
}

HVException& HVException::setClass(const QString& className)
{
    return setDetail(className, detail_key::kClass);
}

HVException& HVException::setCause(const std::optional<Exception>& cause)
{
    return setDetail(cause ? QVariant::fromValue(*cause) : QVariant(), detail_key::kCause);
}

HVException& HVException::setExplanation(const QString& explanation)
{
    return setDetail(explanation, detail_key::kExplain);
}

HVException& HVException::setCPath(const char* path)
{
    if (path == nullptr)
        return *this;
    const auto length = static_cast<qsizetype>(::strnlen(path, kMostPathBytes));
    return setStrPath(platform::textOfFileName(QByteArrayView(path, length)));
}

HVException& HVException::setFileFacts(const QString& name, const QString& path, int type)
{
    setDetail(name, detail_key::kName);
    setStrPath(path);
    if (type == 0)
        return *this;
    const auto row =
        std::find_if(kItemTypes.begin(), kItemTypes.end(), [type](const auto& each) { return each.type == type; });
    return row == kItemTypes.end() ? setDecimalDetail(type, detail_key::kType)
                                   : setDetail(QString(row->name), detail_key::kType);
}

HVException& HVException::setPackageType(unsigned type)
{
    return setDetail(getNameForPackageType(type), detail_key::kPkgType);
}

HVException& HVException::setPackageNumber(qint64 number)
{
    return setDecimalDetail(number, detail_key::kPkgNumber);
}

HVException& HVException::setFilePosition(qint64 position)
{
    return setLongLongDetail(position, detail_key::kPosition);
}

HVException& HVException::setLength(qint64 length)
{
    return setLongLongDetail(length, detail_key::kLength);
}

HVException& HVException::setContent(const ContentSource* content, qint64 position)
{
    try {
        setStrPath(content ? content->pathObject() : QString());
        setFilePosition(position);
        const qint64 physical = content ? content->physicalAllocationAtPosition(position, position + 1) : 0;
        setLongLongDetail(physical, detail_key::kPhysicalPosition);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): a report with fewer facts beats no report
    }
    return *this;
}

HVException& HVException::setClassOf(const QVariant& object)
{
    return setClass(classNameOf(object));
}

HVException& HVException::setMessage(const QString& selector)
{
    return setDetail(selector, detail_key::kMessage);
}

HVException& HVException::setMessage(const QString& selector, const QVariant& object)
{
    const QString className = object.isValid() ? classNameOf(object) : descriptionOf(object);
    return setMessage(QStringLiteral("[%1 %2]").arg(className, selector));
}

HVException& HVException::setVersion(quint32 buildVersion)
{
    const auto text =
        QStringLiteral("%1.%2.%3").arg(buildVersion >> 16).arg((buildVersion >> 8) & 0xFF).arg(buildVersion & 0xFF);
    return setDetail(text, detail_key::kVersion);
}

HVException& HVException::setPreferredLogClass(LogClassification classification)
{
    return setDecimalDetail(static_cast<qint64>(classification), detail_key::kLogClass);
}

HVException& HVException::setSoft(bool soft)
{
    return soft ? setFlag(detail_key::kSoftError) : clearFlag(detail_key::kSoftError);
}

HVException& HVException::setFlag(const QString& key)
{
    return setDetail(true, key);
}

HVException& HVException::clearFlag(const QString& key)
{
    return setDetail(false, key);
}

LogClassification HVException::preferredLogClass() const
{
    const QVariant stored = detail(detail_key::kLogClass);
    return stored.isValid() ? static_cast<LogClassification>(stored.toInt()) : preferredLogClassForName(name());
}

bool HVException::isSoft() const
{
    return hasFlag(detail_key::kSoftError);
}

bool HVException::hasFlag(const QString& key) const
{
    const QVariant value = detail(key);
    return isNumber(value) ? value.toBool() : value.isValid();
}

} // namespace havrel
