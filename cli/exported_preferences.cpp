// SPDX-License-Identifier: MIT
#include "cli/exported_preferences.h"

#include "cli/json_input.h"
#include "cli/json_output.h"
#include "cli/property_list_json.h"
#include "filters/capture_preferences_attribute.h"
#include "foundation/description.h"
#include "foundation/property_list.h"
#include "platform/file_names.h"

#include <array>

namespace havrel::cli {
namespace {

namespace attribute = capture_preferences_attribute;

const QString kPath = QStringLiteral("path");
const QString kPreferences = QStringLiteral("preferences");
const QString kAttribute = QStringLiteral("attribute");
const QString kDescription = QStringLiteral("description"); // only read, and not looked at

/// The dictionary in the bytes as JSON; null when they hold none.
QByteArray jsonOfPreferences(const QByteArray& bytes)
{
    const attribute::Reading reading = attribute::readingOf(platform::AttributeValue{0, bytes});
    return reading.state == attribute::State::Readable ? jsonOfPropertyList(reading.dictionary)
                                                       : kJsonNull.toByteArray();
}

struct BytesReading
{
    QByteArray bytes;
    QString fault;
};

BytesReading bytesOfPreferences(const QVariant& json)
{
    if (json.typeId() != QMetaType::QVariantMap)
        return {{}, QStringLiteral("\"preferences\" wants an object")};
    const PropertyListFromJson list = propertyListOfJson(json);
    if (!list.fault.isNull())
        return {{}, list.fault};
    if (list.value.typeId() != QMetaType::QVariantMap)
        return {{}, QStringLiteral("\"preferences\" wants a dictionary")};
    const PropertyListWriting written = binaryPropertyList(list.value);
    return {written.bytes, written.error ? written.error->localizedDescription() : QString()};
}

BytesReading bytesOfAttribute(const QVariant& json)
{
    const auto decoded =
        QByteArray::fromBase64Encoding(json.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (json.typeId() != QMetaType::QString || !decoded)
        return {{}, QStringLiteral("\"attribute\" wants a string of base64")};
    return {*decoded, {}};
}

/// Whether the bytes come back from their JSON as they are.
bool survives(const QByteArray& json, const QByteArray& bytes)
{
    if (json == kJsonNull)
        return false;
    const BytesReading again = bytesOfPreferences(readJson(json).value);
    return again.fault.isNull() && again.bytes == bytes;
}

BytesReading bytesOf(const QVariantMap& line)
{
    const bool hasPreferences = line.contains(kPreferences) && !isNullObject(line.value(kPreferences));
    if (!line.contains(kAttribute)) {
        return hasPreferences ? bytesOfPreferences(line.value(kPreferences))
                              : BytesReading{{}, QStringLiteral("neither \"preferences\" nor \"attribute\"")};
    }
    BytesReading raw = bytesOfAttribute(line.value(kAttribute));
    if (!hasPreferences || !raw.fault.isNull())
        return raw;
    const QVariant inAttribute = readJson(jsonOfPreferences(raw.bytes)).value;
    if (inAttribute != line.value(kPreferences))
        raw.fault = QStringLiteral("\"preferences\" and \"attribute\" differ; remove the one that is wrong");
    return raw;
}

QString unknownKeyIn(const QVariantMap& line)
{
    const std::array known = {kPath, kPreferences, kAttribute, kDescription};
    for (auto it = line.begin(); it != line.end(); ++it)
        if (std::find(known.begin(), known.end(), it.key()) == known.end())
            return it.key();
    return {};
}

BytesReading pathOf(const QVariantMap& line)
{
    const QVariant text = line.value(kPath);
    if (text.typeId() != QMetaType::QString || text.toString().isEmpty())
        return {{}, QStringLiteral("\"path\" wants a string that is not empty")};
    const QByteArray path = platform::bytesOfFileName(text.toString());
    if (path.contains('\0') || platform::textOfFileName(path) != text.toString())
        return {{}, QStringLiteral("\"path\" holds what no path can")};
    return {path, {}};
}

} // namespace

QByteArray jsonOfExported(const ExportedPreferences& record)
{
    const QByteArray preferences = jsonOfPreferences(record.bytes);
    JsonObject json;
    json.add(kPath, jsonText(platform::textOfFileName(record.path))).add(kPreferences, preferences);
    if (!survives(preferences, record.bytes))
        json.add(kAttribute, '"' + record.bytes.toBase64() + '"');
    return json.take();
}

ExportedReading exportedOfJson(const QByteArray& line)
{
    const auto fault = [](const QString& text) { return ExportedReading{{}, text}; };
    const JsonReading json = readJson(line);
    if (!json.fault.isNull())
        return fault(QStringLiteral("not JSON: %1 (byte %2)").arg(json.fault, QString::number(json.offset + 1)));
    if (json.value.typeId() != QMetaType::QVariantMap)
        return fault(QStringLiteral("not an object"));
    const QVariantMap map = json.value.toMap();
    if (const QString key = unknownKeyIn(map); !key.isNull())
        return fault(QStringLiteral("an unknown key: %1").arg(key));
    const BytesReading path = pathOf(map);
    if (!path.fault.isNull())
        return fault(path.fault);
    if (map.contains(kPreferences) && isNullObject(map.value(kPreferences)) && !map.contains(kAttribute))
        return {{path.bytes, {}}, {}, true};
    const BytesReading bytes = bytesOf(map);
    return {{path.bytes, bytes.bytes}, bytes.fault};
}

} // namespace havrel::cli
