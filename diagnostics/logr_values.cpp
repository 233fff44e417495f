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

constexpr int kMostNested = 100; // containers in containers

/// Writes values and, one level deeper, what they hold.
struct ValueWriter
{
    Logr& logger;
    int depth = 0; // containers around the value

    // NOLINTNEXTLINE(modernize-use-nodiscard): asked for what it writes
    LogLineIdentPtr writeKey(LogClassification classification,
                             const LogLineIdentPtr& inLine,
                             const QString& key,
                             const QVariant& value) const;
    // NOLINTNEXTLINE(modernize-use-nodiscard): the same
    LogLineIdentPtr writeDictionary(LogClassification classification,
                                    const UserInfoLogClassifications& map,
                                    const LogLineIdentPtr& inLine,
                                    const QVariantMap& dictionary) const;
    void writeList(LogClassification classification, const LogLineIdentPtr& inLine, const QVariantList& list) const;
};

LogLineIdentPtr ValueWriter::writeKey(LogClassification classification,
                                      const LogLineIdentPtr& inLine,
                                      const QString& key,
                                      const QVariant& value) const
{
    if (!isDictionary(value) && !isList(value))
        return logger.writeLine(classification, inLine, key + QStringLiteral(": ") + descriptionOf(value));
    if (depth == kMostNested)
        return logger.writeLine(classification, inLine, key + QStringLiteral(": ..."));
    LogLineIdentPtr line = logger.writeLine(classification, inLine, key + u':');
    if (!line)
        return line;
    const ValueWriter deeper{.logger = logger, .depth = depth + 1};
    if (isDictionary(value))
        deeper.writeDictionary(classification, {}, line, value.toMap());
    else
        deeper.writeList(classification, line, value.toList());
    return line;
}

LogLineIdentPtr ValueWriter::writeDictionary(LogClassification classification,
                                             const UserInfoLogClassifications& map,
                                             const LogLineIdentPtr& inLine,
                                             const QVariantMap& dictionary) const
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

void ValueWriter::writeList(LogClassification classification,
                            const LogLineIdentPtr& inLine,
                            const QVariantList& list) const
{
    qsizetype index = 0;
    for (const QVariant& element : list)
        writeKey(classification, inLine, QStringLiteral("[%1]").arg(index++), element);
}

} // namespace

LogLineIdentPtr Logr::writeDictionary(LogClassification classification,
                                      const UserInfoLogClassifications& map,
                                      const LogLineIdentPtr& inLine,
                                      const QVariantMap& dictionary)
{
    return ValueWriter{.logger = *this}.writeDictionary(classification, map, inLine, dictionary);
}

LogLineIdentPtr Logr::writeKey(LogClassification classification,
                               const LogLineIdentPtr& inLine,
                               const QString& key,
                               const QVariant& value)
{
    return ValueWriter{.logger = *this}.writeKey(classification, inLine, key, value);
}

LogLineIdentPtr Logr::writeData(const LoggedData& logged)
{
    LogLineIdentPtr line =
        writeLine(logged.classification,
                  logged.inLine,
                  QStringLiteral("%1: %2 bytes").arg(logged.key, QString::number(logged.data.size())));
    if (!line)
        return line;
    for (const QString& row : dataDumpRows(logged.data, logged.tail))
        writeLine(LogClassification::Details, line, row);
    return line;
}

} // namespace havrel
