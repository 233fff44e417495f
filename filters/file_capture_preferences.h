// SPDX-License-Identifier: MIT
#pragma once

#include "filters/pattern_filter_defs.h"
#include "foundation/duration_scale.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace havrel {

class JNPath;

namespace platform {
struct AttributeValue;
} // namespace platform

/// How the capture engine treats an item. The numbers are what windows and dictionaries work with; every 32-bit number
/// is a valid value, those from 6 on mean "invalid".
enum class CaptureOption : quint32 {
    Normal = 0,
    Exclude = 1,
    ExcludeContents = 2,
    IgnoreChanges = 3,
    Scrape = 4,
    ScrapeContents = 5,
};

// clang-format off
/// The capture preferences of one item: a value that is read from and written to the item's attribute
/// "com.havrel.prefs".
///
/// The stored dictionary, absent keys not written:
///
/// | key                 | value                                      | when                                 |
/// |---------------------|--------------------------------------------|--------------------------------------|
/// | "capture"           | "exclude", "ignore", "scrape" or "invalid" | option is not Normal                 |
/// | "all"               | true                                       | excluding, and allArchives           |
/// | "contents"          | true                                       | the contents are excluded or scraped |
/// | "duration", "scale" | integer and its unit                       | ignoring; scraping, but not at once  |
/// | "from", "to"        | minutes after midnight                     | ignoring, and ignoreBetween          |
/// | "patterns"          | canonical lines of the valid patterns      | there are any                        |
///
/// Threads: one thread at a time.
// clang-format on
class FileCapturePreferences
{
public:
    FileCapturePreferences() = default; ///< \selector init
    /// The defaults, then what \p properties say. Values of other types count as the dictionary additions say, invalid
    /// pattern lines are dropped; anything else is left alone. Never throws.
    ///
    /// \selector initWithProperties:
    explicit FileCapturePreferences(const QVariantMap& properties);

    /// The preferences of the item at \p path, not of what a link points to. None when it has no attribute, one that
    /// cannot be read, one of more than 1024 bytes, or a malformed one; the last is logged at Debug. Blocks on the
    /// disk.
    ///
    /// \selector capturePreferencesForPath:
    [[nodiscard]] static std::optional<FileCapturePreferences> capturePreferencesForPath(const JNPath& path);
    /// The same of an attribute's value that was read from \p path already.
    [[nodiscard]] static std::optional<FileCapturePreferences>
    capturePreferencesOf(const platform::AttributeValue& value, const JNPath& path);

    /// Writes the item's attribute, or removes it (unless it is missing or empty) when there is nothing to store. A
    /// link is not followed, and cannot carry preferences. Blocks on the disk.
    ///
    /// A record of more than 1024 bytes, which nobody can read back, is written all the same and logged as Caution.
    ///
    /// \selector setPreferencesAtPath:
    /// \return the record that the item has now; empty when it has none.
    /// \throws HVException "IO" with errno and path: "Cannot set capture preferences" or "Cannot clear capture
    ///         preferences". The attribute is then as it was.
    QByteArray setPreferencesAtPath(const JNPath& path) const;

    /// The exclusion patterns; none until set or read. Those that were read are made when they are first asked for,
    /// because most records are only read and described. \selector excludeFilterDefs
    [[nodiscard]] const std::optional<PatternFilterDefs>& excludeFilterDefs() const;
    void setExcludeFilterDefs(const std::optional<PatternFilterDefs>& definitions); ///< \selector setExcludeFilterDefs:

    /// The stored dictionary; empty for Normal without valid patterns. \selector properties
    [[nodiscard]] QVariantMap properties() const;
    /// The canonical lines of the valid patterns in order; none, not an empty list, when there are none.
    /// \selector excludeFiltersAsStrings
    [[nodiscard]] std::optional<QStringList> excludeFiltersAsStrings() const;
    /// One line for people: "exclude contents from all captures, excluding //*.tmp". \selector localizedDescription
    [[nodiscard]] QString localizedDescription() const;

    bool allArchives = false;       ///< excluded from the captures of all archives
    bool ignoreBetween = false;     ///< changes are ignored between two times of day
    bool scrapeImmediately = false; ///< right after the capture
    CaptureOption option = CaptureOption::Normal;
    DurationScale ignoreScale = DurationScale::Hours; ///< unit of ignoreDuration
    DurationScale scrapeScale = DurationScale::Days;  ///< unit of scrapeDuration
    qint64 ignoreDuration = 23;     ///< how long after the last capture changes are ignored; 0: not by duration
    quint64 ignoreFromMinute = 540; ///< minutes after midnight
    quint64 ignoreToMinute = 1020;  ///< minutes after midnight
    qint64 scrapeDuration = 31;     ///< how long after the capture the contents are scraped

private:
    void readOption(const QVariantMap& properties);
    void readIgnoring(const QVariantMap& properties);
    void readScraping(const QVariantMap& properties);
    void writeDuration(QVariantMap& properties) const;
    [[nodiscard]] QString optionDescription() const;
    [[nodiscard]] QString ignoringDescription() const;
    [[nodiscard]] QString scrapingDescription(const QString& what) const;

    mutable std::optional<PatternFilterDefs> m_excludeFilterDefs;
    mutable std::optional<QStringList> m_readLines; // as they were read, while there are no definitions of them
};

} // namespace havrel
