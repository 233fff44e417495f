// SPDX-License-Identifier: MIT
// Dictionaries, values and data, as a logger writes them.
#include "diagnostics/data_dump.h"
#include "diagnostics/logr.h"
#include "foundation/description.h"

namespace havrel {
namespace {

bool isPrivate(const QString& key)
{
    return key.startsWith(u'.');
}

QString shownName(const QString& key)
{
    return key == detail_key::kHelp ? QStringLiteral("help") : key;
}

bool isDictionary(const QVariant& value)
{
    return value.typeId() == QMetaType::QVariantMap || value.typeId() == QMetaType::QVariantHash;
}

bool isList(const QVariant& value)
{
    return value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
}

} // namespace

LogLineIdentPtr Logr::writeDictionary(LogClassification classification,
                                      const UserInfoLogClassifications& map,
                                      const LogLineIdentPtr& inLine,
                                      const QVariantMap& dictionary)
{
    LogLineIdentPtr first;
    for (auto entry = dictionary.begin(); entry != dictionary.end(); ++entry) {
        const auto own = isPrivate(entry.key()) ? LogClassification::Subrosa : map.value(entry.key(), classification);
        const auto line = writeKey(own, inLine, shownName(entry.key()), entry.value());
        if (entry == dictionary.begin())
            first = line;
    }
    return first;
}

LogLineIdentPtr Logr::writeKey(LogClassification classification,
                               const LogLineIdentPtr& inLine,
                               const QString& key,
                               const QVariant& value)
{
    if (!isDictionary(value) && !isList(value))
        return writeLine(classification, inLine, key + QStringLiteral(": ") + descriptionOf(value));
    LogLineIdentPtr line = writeLine(classification, inLine, key + u':');
    if (!line)
        return line;
    if (isDictionary(value)) {
        writeDictionary(classification, {}, line, value.toMap());
        return line;
    }
    qsizetype index = 0;
    for (const QVariant& element : value.toList())
        writeKey(classification, line, QStringLiteral("[%1]").arg(index++), element);
    return line;
}

LogLineIdentPtr Logr::writeData(const LoggedData& logged)
{
    LogLineIdentPtr line = writeLine(
        logged.classification, logged.inLine, QStringLiteral("%1: %2 bytes").arg(logged.key).arg(logged.data.size()));
    if (!line)
        return line;
    for (const QString& row : dataDumpRows(logged.data, logged.tail))
        writeLine(LogClassification::Details, line, row);
    return line;
}

} // namespace havrel
