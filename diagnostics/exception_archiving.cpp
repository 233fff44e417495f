// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "foundation/archivable_classes.h"
#include "foundation/archiving.h"
#include "foundation/encodable_details.h"
#include "foundation/keyed_archive.h"

namespace havrel {

/// How archives treat exceptions. Where one was raised stays behind: addresses mean nothing to another process.
class ExceptionArchiving
{
public:
    static bool isException(const QVariant& object) { return object.metaType() == QMetaType::fromType<Exception>(); }
    static bool isHVException(const QVariant& object)
    {
        return object.metaType() == QMetaType::fromType<HVException>();
    }
    static Exception exceptionIn(const QVariant& object)
    {
        if (isHVException(object))
            return *static_cast<const HVException*>(object.constData());
        return object.value<Exception>();
    }
    /// Copies share their body, which is the exception itself.
    static const void* identity(const QVariant& object) { return exceptionIn(object).m_body.get(); }
};

namespace {

constexpr QLatin1StringView kName{"NS.name"};
constexpr QLatin1StringView kReason{"NS.reason"};
constexpr QLatin1StringView kUserInfo{"NS.userinfo"};
constexpr QLatin1StringView kPlainClass{"NSException"};
constexpr QLatin1StringView kHVClass{"HVException"};
constexpr QLatin1StringView kRootClass{"NSObject"};

QVariant textOrNil(const QString& text)
{
    return text.isNull() ? QVariant() : QVariant(text);
}

void encode(const QVariant& object, Encoder& encoder)
{
    const Exception exception = ExceptionArchiving::exceptionIn(object);
    encoder.encodeObject(textOrNil(exception.name()), kName);
    encoder.encodeObject(textOrNil(exception.reason()), kReason);
    encoder.encodeObject(encodableDetails(exception.userInfo(), encoder), kUserInfo);
}

QString decodedText(Decoder& decoder, const QString& key)
{
    return decoder.decodeObject({QStringLiteral("NSString")}, key).toString();
}

/// A detail is whatever the failure was about: any class that this process knows.
QVariantMap decodedDetails(Decoder& decoder)
{
    return decoder.decodeObject({kRootClass}, kUserInfo).toMap();
}

QVariant decodePlain(Decoder& decoder)
{
    const QString name = decodedText(decoder, kName);
    return QVariant::fromValue(Exception(name, decodedText(decoder, kReason), decodedDetails(decoder)));
}

QVariant decodeHV(Decoder& decoder)
{
    const QString name = decodedText(decoder, kName);
    HVException exception(name, decodedText(decoder, kReason));
    exception.details() = decodedDetails(decoder);
    return QVariant::fromValue(Exception(exception));
}

ArchivableClass exceptionRow(const QString& name)
{
    ArchivableClass row;
    row.name = name;
    row.superclasses = {kRootClass};
    row.identity = ExceptionArchiving::identity;
    row.encode = encode;
    return row;
}

} // namespace

ArchivableClass plainExceptionArchivableClass()
{
    ArchivableClass row = exceptionRow(kPlainClass);
    row.isInstance = [](const QVariant& object) {
        return ExceptionArchiving::isException(object) && object.value<Exception>().className() == kPlainClass;
    };
    row.decode = decodePlain;
    return row;
}

ArchivableClass exceptionArchivableClass()
{
    ArchivableClass row = exceptionRow(kHVClass);
    row.superclasses.prepend(kPlainClass);
    row.isInstance = [](const QVariant& object) {
        const bool isSliced = ExceptionArchiving::isException(object);
        return ExceptionArchiving::isHVException(object) ||
               (isSliced && object.value<Exception>().className() == kHVClass);
    };
    row.decode = decodeHV;
    return row;
}

QByteArray Exception::dataForException() const
{
    return dataForRootObject(QVariant::fromValue(*this));
}

Exception Exception::exceptionFromData(const QByteArray& data)
{
    const QVariant exception = archivedObjectOfClass(data, kPlainClass);
    if (!exception.isValid())
        raiseInvalidArchive(QStringLiteral("it holds nil and no exception"));
    return exception.value<Exception>();
}

} // namespace havrel
