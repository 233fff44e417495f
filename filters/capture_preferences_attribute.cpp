// SPDX-License-Identifier: MIT
#include "filters/capture_preferences_attribute.h"

#include "diagnostics/logr.h"
#include "foundation/dictionary_additions.h"
#include "foundation/property_list.h"
#include "platform/file_names.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace havrel::capture_preferences_attribute {
namespace {

Reading malformed(const QByteArray& bytes, const QString& fault)
{
    Reading reading;
    reading.state = State::Malformed;
    reading.bytes = bytes;
    reading.fault = fault;
    return reading;
}

} // namespace

platform::AttributeValue valueFrom(const QByteArray& path)
{
    return platform::readAttribute(path, kNameOnDisk, kMostBytesRead);
}

State stateOf(int error)
{
    switch (error) {
    case 0:
        return State::Readable;
    case ENODATA:
    case ENOTSUP:
        return State::Missing;
    case ERANGE:
        return State::TooLong;
    default:
        return State::Unreadable;
    }
}

Reading readingOf(const platform::AttributeValue& value)
{
    if (value.error != 0) {
        Reading reading;
        reading.state = stateOf(value.error);
        reading.error = value.error;
        return reading;
    }
    const PropertyListReading parsed = parsePropertyList(value.bytes);
    if (parsed.error)
        return malformed(value.bytes, parsed.error->localizedDescription());
    if (parsed.value.typeId() != QMetaType::QVariantMap)
        return malformed(value.bytes, QStringLiteral("the root is not a dictionary"));
    Reading reading;
    reading.state = State::Readable;
    reading.bytes = value.bytes;
    reading.dictionary = parsed.value.toMap();
    return reading;
}

bool isKnownKey(const QString& key)
{
    constexpr auto kKnown =
        std::to_array({"capture", "all", "contents", "duration", "scale", "from", "to", "patterns"});
    return std::any_of(kKnown.begin(), kKnown.end(), [&](const char* each) { return key == QLatin1StringView(each); });
}

bool hasUnknownTreatment(const QVariantMap& dictionary)
{
    constexpr auto kKnown = std::to_array({"exclude", "ignore", "scrape"});
    const QString key = QStringLiteral("capture");
    const QString treatment = stringForKey(dictionary, key).value_or(QString());
    return dictionary.contains(key) && std::none_of(kKnown.begin(), kKnown.end(), [&](const char* each) {
               return treatment == QLatin1StringView(each);
           });
}

void warnOfLostRecord(const QByteArray& path, qsizetype size)
{
    if (size <= kMostBytesRead)
        return;
    Logr::log(LogClassification::Caution,
              QStringLiteral("capture preferences of %1 take %2 bytes; readers take %3, so they have no effect")
                  .arg(platform::textOfFileName(path), QString::number(size), QString::number(kMostBytesRead)));
}

} // namespace havrel::capture_preferences_attribute
