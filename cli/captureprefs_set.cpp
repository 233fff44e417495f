// SPDX-License-Identifier: MIT
#include "cli/attribute_failure.h"
#include "cli/command.h"
#include "cli/given_patterns.h"
#include "cli/items.h"
#include "cli/preferences_changes.h"
#include "cli/report.h"
#include "cli/stored_preferences.h"
#include "cli/subcommands.h"
#include "filters/capture_preferences_attribute.h"
#include "foundation/error.h"
#include "foundation/property_list.h"
#include "fs/item_resources.h"
#include "fs/path.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace havrel::cli {
namespace {

namespace attribute = capture_preferences_attribute;

struct OptionFlag
{
    const char* name;
    CaptureOption option;
    const char* help;
};

constexpr auto kOptionFlags = std::to_array<OptionFlag>({
    {"--normal", CaptureOption::Normal, "Capture the item normally"},
    {"--exclude", CaptureOption::Exclude, "Exclude the item from captures"},
    {"--exclude-contents", CaptureOption::ExcludeContents, "Exclude what is in the folder, but not the folder"},
    {"--ignore", CaptureOption::IgnoreChanges, "Ignore changes for a time (--for, 23 hours unless given) or --between"},
    {"--scrape", CaptureOption::Scrape, "Scrape the item after its capture (--after, 31 days unless given)"},
    {"--scrape-contents", CaptureOption::ScrapeContents, "Scrape what is in the folder, but not the folder"},
});

struct Options
{
    Items items;
    std::array<bool, kOptionFlags.size()> chosen{};
    bool allArchives = false;
    bool notAllArchives = false;
    std::optional<QByteArray> duration;
    std::optional<QByteArray> between;
    std::optional<QByteArray> after;
    bool immediately = false;
    QByteArrayList patterns;
    bool noPatterns = false;
    QByteArrayList added;
    QByteArrayList removed;
    QByteArrayList patternFiles;
    bool force = false;
};

constexpr const char* kFooter =
    "What is not named stays as it is on each item. An item that begins to be ignored is so for 23 hours, or only "
    "between\n"
    "the times that are given; one that begins to be scraped is so 31 days after its capture. --pattern and "
    "--patterns-from\n"
    "replace the item's patterns, --add-pattern and --remove-pattern change them. 'clear' takes everything away.\n"
    "\n"
    "Durations are a count and a unit: minutes, hours, days, weeks, months, years, or min, h, d, w, y.\n"
    "--for none and --between none take that condition away.\n"
    "\n"
    "Invalid patterns, and files of patterns that cannot be read, are refused before anything is written.\n"
    "Links are never followed, and cannot carry preferences. Only folders have contents to exclude or scrape; a "
    "folder\n"
    "that people handle as one thing, such as Tool.app, counts as a file.\n"
    "--force writes records of more than 1024 bytes, which no reader takes, and replaces records that cannot be read.\n"
    "\n"
    "Examples:\n"
    "  havrel captureprefs set --exclude-contents --pattern '//*.tmp' ~/some/folder\n"
    "  havrel captureprefs set --ignore --for '2 days' --between 09:00-17:00 mail.db\n"
    "  find . -name '*.iso' -print0 | havrel captureprefs set --exclude --items-from -";

template<class Value>
Change<Value>
changeOf(const std::optional<QByteArray>& text, std::optional<Value> (*parse)(const QByteArray&), const char* usage)
{
    if (!text)
        return {};
    if (*text == "none" || *text == "0")
        return {true, std::nullopt};
    const std::optional<Value> value = parse(*text);
    if (!value)
        throw WrongUsage(usage);
    return {true, value};
}

Change<Duration> scrapeAfterOf(const Options& options)
{
    if (options.immediately)
        return {true, std::nullopt};
    return changeOf(options.after, durationOf, "--after wants a duration like '31 days'");
}

/// What went wrong before anything was written.
struct Reports
{
    Report invalid; ///< patterns
    Report unread;  ///< files of patterns

    [[nodiscard]] ExitStatus status() const
    {
        return invalid.status() == ExitStatus::Done ? unread.status() : ExitStatus::WrongUsage;
    }
};

void readPatterns(const Options& options, PreferencesChanges& changes, Reports& reports)
{
    if (options.noPatterns || !options.patterns.isEmpty() || !options.patternFiles.isEmpty())
        changes.patterns = storablePatterns(options.patterns, reports.invalid);
    for (const QByteArray& file : options.patternFiles) {
        const PatternsOfFile read = storablePatternsOfFile(file, reports.invalid);
        if (read.error != 0)
            reports.unread.failure(file, systemErrorText(read.error));
        changes.patterns->append(read.canonicals);
    }
    changes.addedPatterns = storablePatterns(options.added, reports.invalid);
    changes.removedPatterns = storablePatterns(options.removed, reports.invalid);
}

PreferencesChanges changesOf(const Options& options, Reports& reports)
{
    PreferencesChanges changes;
    for (std::size_t i = 0; i < kOptionFlags.size(); ++i)
        if (options.chosen[i])
            changes.option = kOptionFlags[i].option;
    if (options.allArchives || options.notAllArchives)
        changes.allArchives = options.allArchives;
    changes.ignoreFor = changeOf(options.duration, durationOf, "--for wants a duration like '23 hours', or none");
    changes.ignoreBetween =
        changeOf(options.between, partOfDayOf, "--between wants two times like 09:00-17:00, or none");
    changes.scrapeAfter = scrapeAfterOf(options);
    readPatterns(options, changes, reports);
    return changes;
}

/// The dictionary to store: of the old one, what this program does not know and whatever no change names, with what the
/// changed preferences say.
QVariantMap
dictionaryOf(const FileCapturePreferences& preferences, const PreferencesChanges& changes, const QVariantMap& old)
{
    const bool keepsTreatment = !changes.option && attribute::hasUnknownTreatment(old);
    const auto isSaidAnew = [&](const QString& key) {
        return key == QLatin1StringView("patterns") ? changes.namePatterns()
                                                    : attribute::isKnownKey(key) && !keepsTreatment;
    };
    QVariantMap dictionary;
    for (auto it = old.begin(); it != old.end(); ++it)
        if (!isSaidAnew(it.key()))
            dictionary.insert(it.key(), it.value());
    const QVariantMap said = preferences.properties();
    for (auto it = said.begin(); it != said.end(); ++it)
        if (isSaidAnew(it.key()))
            dictionary.insert(it.key(), it.value());
    return dictionary;
}

/// Why the changes cannot be made to what a newer program stored; null when they can.
QString refusalToDetail(const PreferencesChanges& changes, const QVariantMap& old)
{
    if (changes.option || !changes.nameTreatment() || !attribute::hasUnknownTreatment(old))
        return {};
    return QStringLiteral("it is treated in a way that this program does not know; name the way that is to hold, too");
}

/// Why the item cannot be treated so; null when it can. The window offers no treatment of contents for it either.
QString refusalOfContents(const PreferencesChanges& changes, const QByteArray& path)
{
    const bool isAboutContents =
        changes.option == CaptureOption::ExcludeContents || changes.option == CaptureOption::ScrapeContents;
    if (!isAboutContents)
        return {};
    const ItemResources resources = itemResources(*JNPath::withCPath(path));
    if (resources.isContainer() || !resources.canCarryAttributes) // what cannot carry any is told so when it is written
        return {};
    return QStringLiteral("only folders have contents to treat; --exclude and --scrape are for the item itself");
}

QString unreadableText(const attribute::Reading& reading, const QByteArray& path)
{
    if (reading.state == attribute::State::Unreadable)
        return attributeFailureText(reading.error, path, AttributeAccess::Read);
    return QStringLiteral("its present preferences cannot be read (%1); --force replaces them")
        .arg(reading.state == attribute::State::TooLong ? QStringLiteral("too long") : reading.fault);
}

/// Whether what is there, and cannot be read, may be replaced.
bool isReplaceable(const attribute::Reading& reading)
{
    return reading.state == attribute::State::Malformed || reading.state == attribute::State::TooLong ||
           reading.error == EACCES; // an item may be writable that is not readable
}

QString store(const QByteArray& path, const QVariantMap& dictionary, bool force)
{
    if (dictionary.isEmpty())
        return removePreferences(path);
    const PropertyListWriting record = binaryPropertyList(dictionary);
    if (record.error)
        return record.error->localizedDescription();
    QString fault = storePreferences(path, record.bytes, force);
    if (fault.isNull())
        attribute::warnOfLostRecord(path, record.bytes.size());
    return fault;
}

/// \return null, or why the item was left as it was
QString set(const QByteArray& path, const PreferencesChanges& changes, bool force)
{
    const attribute::Reading reading = attribute::readingOf(attribute::valueFrom(path));
    const bool isKnown = reading.state == attribute::State::Readable || reading.state == attribute::State::Missing;
    if (!isKnown && !(force && isReplaceable(reading)))
        return unreadableText(reading, path);
    if (QString refusal = refusalToDetail(changes, reading.dictionary); !refusal.isNull())
        return refusal;
    if (QString refusal = refusalOfContents(changes, path); !refusal.isNull())
        return refusal;
    FileCapturePreferences preferences(reading.dictionary);
    if (QString refusal = changes.applyTo(preferences); !refusal.isNull())
        return refusal;
    return store(path, dictionaryOf(preferences, changes, reading.dictionary), force);
}

ExitStatus set(const Options& options)
{
    if (options.items.readStandardInput() && options.patternFiles.contains("-"))
        throw WrongUsage("standard input cannot hold items and patterns");
    Reports reports;
    const PreferencesChanges changes = changesOf(options, reports);
    if (reports.status() != ExitStatus::Done)
        return reports.status();
    if (changes.isEmpty())
        throw WrongUsage("nothing to set");
    if (const QString contradiction = changes.contradiction(); !contradiction.isNull())
        throw WrongUsage(contradiction.toUtf8());
    Report report;
    options.items.forEach(report, [&](const QByteArray& path) {
        if (const QString fault = set(path, changes, options.force); !fault.isNull())
            report.failure(path, fault);
    });
    return report.status();
}

void defineTreatment(Command& command, Options& options)
{
    command.section("What becomes of the item");
    std::array<const char*, kOptionFlags.size()> names{};
    for (std::size_t i = 0; i < kOptionFlags.size(); ++i) {
        names[i] = kOptionFlags[i].name;
        command.flag(kOptionFlags[i].name, options.chosen[i], kOptionFlags[i].help);
    }
    command.alternatives(names);
    command.flag("--all-archives", options.allArchives, "Excluded from the captures of all archives");
    command.flag("--no-all-archives", options.notAllArchives, "Not so any more");
    command.value(
        "--for", "DURATION", options.duration, "Ignore changes for so long after the last capture: '23 hours'");
    command.value("--between", "HH:MM-HH:MM", options.between, "Ignore changes between two times of day");
    command.value("--after", "DURATION", options.after, "Scrape so long after the capture: '31 days'");
    command.flag("--immediately", options.immediately, "Scrape right after the capture");
    command.alternatives(std::array{"--all-archives", "--no-all-archives"});
    command.alternatives(std::array{"--after", "--immediately"});
}

void definePatterns(Command& command, Options& options)
{
    command.values(
        "--pattern", "LINE", options.patterns, "Exclude what matches, instead of the present patterns; repeatable");
    command.values("--add-pattern", "LINE", options.added, "Exclude what matches, too; repeatable");
    command.values("--remove-pattern", "LINE", options.removed, "No longer exclude what matches; repeatable");
    command.values(
        "--patterns-from", "FILE", options.patternFiles, "Like --pattern for each line of FILE; - is standard input");
    command.flag("--no-patterns", options.noPatterns, "Without the present patterns");
}

} // namespace

void defineCaptureprefsSet(Command& command)
{
    const auto options = std::make_shared<Options>();
    options->items.define(command);
    defineTreatment(command, *options);
    definePatterns(command, *options);
    command.section("Options");
    command.flag("--force", options->force, "Write and replace what cannot be read back");
    command.footer(kFooter);
    command.action([options] { return set(*options); });
}

} // namespace havrel::cli
