// SPDX-License-Identifier: MIT
#include "foundation/keyed_archive_values.h"

#include <algorithm>
#include <array>

namespace havrel {
namespace {

using Kind = PropertyListKind;

constexpr std::array kValueClasses{
    ArchivedValueClass{QLatin1StringView("NSString"), {}, Kind::String},
    ArchivedValueClass{QLatin1StringView("NSMutableString"), QLatin1StringView("NSString"), Kind::String},
    ArchivedValueClass{QLatin1StringView("NSData"), {}, Kind::Data},
    ArchivedValueClass{QLatin1StringView("NSMutableData"), QLatin1StringView("NSData"), Kind::Data},
    ArchivedValueClass{QLatin1StringView("NSDate"), {}, Kind::Date},
    ArchivedValueClass{QLatin1StringView("NSNull"), {}, Kind::Null},
    ArchivedValueClass{QLatin1StringView("NSArray"), {}, Kind::List},
    ArchivedValueClass{QLatin1StringView("NSMutableArray"), QLatin1StringView("NSArray"), Kind::List},
    ArchivedValueClass{QLatin1StringView("NSDictionary"), {}, Kind::Map},
    ArchivedValueClass{QLatin1StringView("NSMutableDictionary"), QLatin1StringView("NSDictionary"), Kind::Map},
};

} // namespace

const ArchivedValueClass* archivedValueClassNamed(const QString& name)
{
    const auto found = std::find_if(
        kValueClasses.begin(), kValueClasses.end(), [&](const ArchivedValueClass& each) { return each.name == name; });
    return found == kValueClasses.end() ? nullptr : &*found;
}

QString archivedClassOfBareValue(const QVariant& value)
{
    switch (propertyListKindOf(value)) {
    case Kind::Bool:
    case Kind::Signed:
    case Kind::Unsigned:
    case Kind::Real:
        return QStringLiteral("NSNumber");
    case Kind::String:
        return QStringLiteral("NSString");
    case Kind::Data:
        return QStringLiteral("NSData");
    case Kind::Date:
        return QStringLiteral("NSDate");
    default:
        return {};
    }
}

} // namespace havrel
