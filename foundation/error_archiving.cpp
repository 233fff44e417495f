// SPDX-License-Identifier: MIT
#include "foundation/archivable_classes.h"
#include "foundation/encodable_details.h"
#include "foundation/error.h"

namespace havrel {
namespace {

constexpr QLatin1StringView kDomain{"NSDomain"};
constexpr QLatin1StringView kCode{"NSCode"};
constexpr QLatin1StringView kUserInfo{"NSUserInfo"};

void encode(const QVariant& object, Encoder& encoder)
{
    const auto error = object.value<Error>();
    encoder.encodeObject(error.domain(), kDomain);
    encoder.encodeInteger(error.code(), kCode);
    encoder.encodeObject(encodableDetails(error.userInfo(), encoder), kUserInfo);
}

QVariant decode(Decoder& decoder)
{
    const QString domain = decoder.decodeObject({QStringLiteral("NSString")}, kDomain).toString();
    const qint64 code = decoder.decodeInteger(kCode);
    // A user-info holds whatever the failure was about: any class that this process knows.
    const QStringList anyClass{QStringLiteral("NSObject")};
    return QVariant::fromValue(Error(domain, code, decoder.decodeObject(anyClass, kUserInfo).toMap()));
}

} // namespace

ArchivableClass errorArchivableClass()
{
    ArchivableClass row;
    row.name = QStringLiteral("NSError");
    row.superclasses = {QStringLiteral("NSObject")};
    row.isInstance = [](const QVariant& object) { return object.metaType() == QMetaType::fromType<Error>(); };
    row.encode = encode;
    row.decode = decode;
    return row;
}

} // namespace havrel
