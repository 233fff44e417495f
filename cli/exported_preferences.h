// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel::cli {

/// An item's record as it is carried by export and import.
struct ExportedPreferences
{
    QByteArray path;
    QByteArray bytes; ///< of the attribute
};

/// The record as one line of JSON: "path", "preferences" (the dictionary, or null when the bytes hold none), and
/// "attribute" (the bytes in base64) unless the very same bytes are made of "preferences".
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonOfExported(const ExportedPreferences& record);

struct ExportedReading
{
    ExportedPreferences record;
    QString fault;            ///< null when there is a record, or none to carry
    bool hasNoRecord = false; ///< "preferences" is null and there is no "attribute": an item without, as it was shown
};

/// The inverse. Also takes what 'show --json' wrote. "preferences" and "attribute" must agree when both are there.
///
/// Threads: any thread.
[[nodiscard]] ExportedReading exportedOfJson(const QByteArray& line);

} // namespace havrel::cli
