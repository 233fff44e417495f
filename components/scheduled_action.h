// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace havrel {

/// A capture that is to be made. As a dictionary, on the bus and on the disk:
///
/// | key         | value                                                     |
/// |-------------|-----------------------------------------------------------|
/// | "id"        | string, different from all others of this user            |
/// | "kind"      | "quickCapture"                                            |
/// | "archive"   | path of the archive's file, bytes                         |
/// | "items"     | list of paths, bytes                                      |
/// | "time"      | double: not before, seconds since 2001-01-01 00:00:00 UTC |
/// | "suspended" | boolean: not until that is lifted                         |
/// | "attempts"  | integer: how often it has begun                           |
///
/// Threads: const members any thread, others one at a time.
struct ScheduledAction
{
    QString id;
    QByteArray archive;
    QByteArrayList items;
    double time = 0;
    bool suspended = false;
    int attempts = 0;

    [[nodiscard]] QVariantMap asDictionary() const;
    /// \return none for a dictionary that lacks what an action needs
    [[nodiscard]] static std::optional<ScheduledAction> fromDictionary(const QVariantMap& dictionary);

    friend bool operator==(const ScheduledAction&, const ScheduledAction&) = default;
};

/// What became of an action. As a dictionary: "id", "kind", "archive", "items" as of the action, "started" and "ended"
/// (doubles, as "time"), "outcome" ("done", "problems": some items were left out, or "failed"), and where they
/// apply "reason" (string), "fault" (string, a word of EngineFault), "words" (string, what the engine says itself, as
/// far as it says anything), "capture" (its name in the archive), "filesNew", "filesChanged", "filesUnmodified",
/// "bytesProcessed", "bytesAdded" (integers), "problemCount" (integer) and "problems", a list of dictionaries with
/// "item" and "reason": of the first thousand, so that the log stays small.
///
/// Threads: const members any thread, others one at a time.
struct RunSummary
{
    ScheduledAction action{};
    double started = 0;
    double ended = 0;
    QString reason{}; ///< why it failed; null when it did not
    QString fault{};
    QString words{};
    CaptureSummary summary{};

    [[nodiscard]] QVariantMap asDictionary() const;
};

} // namespace havrel
