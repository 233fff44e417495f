// SPDX-License-Identifier: MIT
#include "filters/file_capture_preferences.h"

#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "filters/capture_preferences_attribute.h"
#include "filters/pattern_filter_def.h"
#include "filters/valid_pattern_line.h"
#include "foundation/date_additions.h"
#include "foundation/dictionary_additions.h"
#include "foundation/property_list.h"
#include "foundation/readable_texts.h"
#include "fs/path.h"
#include "platform/extended_attributes.h"

#include <array>

namespace havrel {
namespace {

namespace attribute = capture_preferences_attribute;

namespace key {
const QString kCapture = QStringLiteral("capture");
const QString kAll = QStringLiteral("all");
const QString kContents = QStringLiteral("contents");
const QString kDuration = QStringLiteral("duration");
const QString kScale = QStringLiteral("scale");
const QString kFrom = QStringLiteral("from");
const QString kTo = QStringLiteral("to");
const QString kPatterns = QStringLiteral("patterns");
} // namespace key

/// What an option writes.
struct StoredOption
{
    CaptureOption option;
    QString capture;
    bool contents;
};

const auto kStoredOptions = std::to_array<StoredOption>({
    {CaptureOption::Exclude, QStringLiteral("exclude"), false},
    {CaptureOption::ExcludeContents, QStringLiteral("exclude"), true},
    {CaptureOption::IgnoreChanges, QStringLiteral("ignore"), false},
    {CaptureOption::Scrape, QStringLiteral("scrape"), false},
    {CaptureOption::ScrapeContents, QStringLiteral("scrape"), true},
});

StoredOption storedOption(CaptureOption option)
{
    for (const StoredOption& each : kStoredOptions)
        if (each.option == option)
            return each;
    return {option, QStringLiteral("invalid"), false};
}

bool isExcluding(CaptureOption option)
{
    return option == CaptureOption::Exclude || option == CaptureOption::ExcludeContents;
}

bool isScraping(CaptureOption option)
{
    return option == CaptureOption::Scrape || option == CaptureOption::ScrapeContents;
}

DurationScale scaleFrom(const QVariantMap& properties)
{
    return static_cast<DurationScale>(unsignedIntegerForKey(properties, key::kScale));
}

/// The texts among the elements; a value that is no list has none.
QStringList textsOf(const QVariant& value)
{
    const QVariantList elements = value.toList();
    QStringList texts;
    texts.reserve(elements.size());
    for (const QVariant& each : elements)
        if (each.typeId() == QMetaType::QString)
            texts.append(each.toString());
    return texts;
}

/// Those of the valid ones.
QStringList canonicalLines(const QStringList& readLines)
{
    QStringList lines;
    lines.reserve(readLines.size());
    for (const QString& each : readLines)
        if (const std::optional<PatternLine> line = validPatternLine(each, AbsolutePaths::Refused))
            lines.append(canonicalTextOf(*line));
    return lines;
}

QStringList canonicalLines(const PatternFilterDefs& definitions)
{
    QStringList lines;
    lines.reserve(definitions.size());
    for (const PatternFilterDefPtr& each : definitions)
        if (each->valid())
            lines.append(each->canonicalPattern());
    return lines;
}

QString readableMinute(quint64 minute)
{
    const std::chrono::hours hours(static_cast<qint64>(minute / 60));
    const std::chrono::minutes minutes(static_cast<qint64>(minute % 60));
    return stringWithReadableTime(todayWithHour(hours, minutes), ReadableTimeStyle::Short);
}

} // namespace

FileCapturePreferences::FileCapturePreferences(const QVariantMap& properties)
{
    readOption(properties);
    if (boolForKey(properties, key::kContents))
        option = static_cast<CaptureOption>(static_cast<quint32>(option) + 1);
    m_readLines = textsOf(properties.value(key::kPatterns));
}

void FileCapturePreferences::readOption(const QVariantMap& properties)
{
    const std::optional<QString> capture = stringForKey(properties, key::kCapture);
    if (capture == QLatin1StringView("exclude")) {
        option = CaptureOption::Exclude;
        allArchives = boolForKey(properties, key::kAll);
    } else if (capture == QLatin1StringView("ignore")) {
        readIgnoring(properties);
    } else if (capture == QLatin1StringView("scrape")) {
        readScraping(properties);
    }
}

void FileCapturePreferences::readIgnoring(const QVariantMap& properties)
{
    option = CaptureOption::IgnoreChanges;
    ignoreDuration = integerForKey(properties, key::kDuration);
    ignoreScale = scaleFrom(properties);
    ignoreBetween = containsKey(properties, key::kFrom);
    if (!ignoreBetween)
        return;
    ignoreFromMinute = unsignedIntegerForKey(properties, key::kFrom);
    ignoreToMinute = unsignedIntegerForKey(properties, key::kTo);
}

void FileCapturePreferences::readScraping(const QVariantMap& properties)
{
    option = CaptureOption::Scrape;
    scrapeImmediately = !containsKey(properties, key::kDuration);
    if (scrapeImmediately)
        return;
    scrapeDuration = integerForKey(properties, key::kDuration);
    scrapeScale = scaleFrom(properties);
}

std::optional<FileCapturePreferences> FileCapturePreferences::capturePreferencesForPath(const JNPath& path)
{
    return capturePreferencesOf(attribute::valueFrom(path.cPath()), path);
}

std::optional<FileCapturePreferences>
FileCapturePreferences::capturePreferencesOf(const platform::AttributeValue& value, const JNPath& path)
{
    const attribute::Reading reading = attribute::readingOf(value);
    if (reading.state == attribute::State::Malformed) {
        Logr::log(LogClassification::Debug,
                  QStringLiteral("%1 malformed %2 attribute in %3: %4")
                      .arg(QStringLiteral("+[FileCapturePreferences capturePreferencesForPath:]"),
                           QString(attribute::kName),
                           path.path(),
                           reading.fault));
    }
    if (reading.state != attribute::State::Readable)
        return std::nullopt;
    return FileCapturePreferences(reading.dictionary);
}

namespace {

QByteArray writeRecord(const JNPath& path, const QVariantMap& properties)
{
    const QString reason = QStringLiteral("Cannot set capture preferences");
    const PropertyListWriting record = binaryPropertyList(properties);
    if (record.error)
        HVException::error(*record.error, QString(exception_name::kIO), reason).setPathObject(path).raise();
    const int error = platform::writeAttribute(path.cPath(), attribute::kNameOnDisk, record.bytes);
    if (error != 0)
        HVException::ioErrno(error, reason).setPathObject(path).raise();
    attribute::warnOfLostRecord(path.cPath(), record.bytes.size());
    return record.bytes;
}

void removeRecord(const JNPath& path)
{
    const platform::AttributeSize present = platform::sizeOfAttribute(path.cPath(), attribute::kNameOnDisk);
    if (present.error != 0 || present.size == 0)
        return;
    const int error = platform::removeAttribute(path.cPath(), attribute::kNameOnDisk);
    if (error != 0)
        HVException::ioErrno(error, QStringLiteral("Cannot clear capture preferences")).setPathObject(path).raise();
}

} // namespace

QByteArray FileCapturePreferences::setPreferencesAtPath(const JNPath& path) const
{
    const QVariantMap stored = properties();
    if (!stored.isEmpty())
        return writeRecord(path, stored);
    removeRecord(path);
    return {};
}

QVariantMap FileCapturePreferences::properties() const
{
    QVariantMap properties;
    if (option != CaptureOption::Normal) {
        const StoredOption stored = storedOption(option);
        properties.insert(key::kCapture, stored.capture);
        if (stored.contents)
            setBool(properties, true, key::kContents);
    }
    if (isExcluding(option) && allArchives)
        setBool(properties, true, key::kAll);
    writeDuration(properties);
    if (const std::optional<QStringList> lines = excludeFiltersAsStrings())
        properties.insert(key::kPatterns, QVariantList(lines->begin(), lines->end()));
    return properties;
}

void FileCapturePreferences::writeDuration(QVariantMap& properties) const
{
    if (option == CaptureOption::IgnoreChanges) {
        setInteger(properties, ignoreDuration, key::kDuration);
        setUnsignedInteger(properties, static_cast<quint32>(ignoreScale), key::kScale);
    } else if (isScraping(option) && !scrapeImmediately) {
        setInteger(properties, scrapeDuration, key::kDuration);
        setUnsignedInteger(properties, static_cast<quint32>(scrapeScale), key::kScale);
    }
    if (option == CaptureOption::IgnoreChanges && ignoreBetween) {
        setUnsignedInteger(properties, ignoreFromMinute, key::kFrom);
        setUnsignedInteger(properties, ignoreToMinute, key::kTo);
    }
}

const std::optional<PatternFilterDefs>& FileCapturePreferences::excludeFilterDefs() const
{
    if (m_readLines)
        m_excludeFilterDefs =
            PatternFilterDef::filterDefsFromStrings(*m_readLines, PatternFilterDef::itemEnvironment());
    m_readLines.reset();
    return m_excludeFilterDefs;
}

void FileCapturePreferences::setExcludeFilterDefs(const std::optional<PatternFilterDefs>& definitions)
{
    m_readLines.reset();
    m_excludeFilterDefs = definitions;
}

std::optional<QStringList> FileCapturePreferences::excludeFiltersAsStrings() const
{
    const QStringList lines =
        m_readLines ? canonicalLines(*m_readLines) : canonicalLines(m_excludeFilterDefs.value_or(PatternFilterDefs()));
    return lines.isEmpty() ? std::nullopt : std::optional(lines);
}

QString FileCapturePreferences::localizedDescription() const
{
    if (option > CaptureOption::ScrapeContents)
        return QStringLiteral("unrecognized capture preferences");
    QString description = optionDescription();
    if (const std::optional<QStringList> lines = excludeFiltersAsStrings())
        description += QStringLiteral(", excluding ") + lines->join(QStringLiteral(", "));
    return description;
}

QString FileCapturePreferences::optionDescription() const
{
    const QString archives = allArchives ? QStringLiteral(" from all captures") : QString();
    switch (option) {
    case CaptureOption::Exclude:
        return QStringLiteral("excluded") + archives;
    case CaptureOption::ExcludeContents:
        return QStringLiteral("exclude contents") + archives;
    case CaptureOption::IgnoreChanges:
        return ignoringDescription();
    case CaptureOption::Scrape:
        return scrapingDescription(QStringLiteral("scrape"));
    case CaptureOption::ScrapeContents:
        return scrapingDescription(QStringLiteral("scrape contents"));
    case CaptureOption::Normal:
        break;
    }
    return QStringLiteral("normal");
}

QString FileCapturePreferences::ignoringDescription() const
{
    QString description = QStringLiteral("ignore changes ");
    if (ignoreDuration != 0) {
        description +=
            QStringLiteral("for %1 after last capture").arg(stringWithReadableDuration(ignoreDuration, ignoreScale));
    }
    if (!ignoreBetween || (ignoreFromMinute == 0 && ignoreToMinute == 0))
        return description;
    if (ignoreDuration != 0)
        description += QStringLiteral(" and ");
    return description +
           QStringLiteral("between %1 and %2").arg(readableMinute(ignoreFromMinute), readableMinute(ignoreToMinute));
}

QString FileCapturePreferences::scrapingDescription(const QString& what) const
{
    if (scrapeImmediately)
        return what;
    return what +
           QStringLiteral(" %1 after being captured").arg(stringWithReadableDuration(scrapeDuration, scrapeScale));
}

} // namespace havrel
