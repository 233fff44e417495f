// SPDX-License-Identifier: MIT
#pragma once

#include "platform/extended_attributes.h"

#include <QByteArray>
#include <QHash>
#include <QString>

namespace havrel::cli {

class Report;

/// How items are shown.
enum class ShownAs { Words, Json, NulTerminatedNames };

/// Shows items with their preferences. Most items of a tree carry one of a few records, so what a record means is
/// worked out once for as long as it is remembered.
///
/// Threads: one thread at a time.
class DescribedPreferences
{
public:
    DescribedPreferences(ShownAs form, Report& report);

    /// Writes a record for the item to standard output, and tells the report when its preferences cannot be used: they
    /// are shown as the capture engine takes them, as none. \p value is what was read from it.
    void show(const QByteArray& path, const platform::AttributeValue& value);

private:
    struct Meaning
    {
        QString description;
        QByteArray json; ///< of the dictionary, where it is shown as that
        QString fault;   ///< null when there is none
    };

    [[nodiscard]] Meaning meaningOf(const platform::AttributeValue& value) const;
    [[nodiscard]] const Meaning& remembered(const platform::AttributeValue& value);
    void write(const QByteArray& path, const Meaning& meaning) const;

    ShownAs m_form;
    Report& m_report;
    QHash<QByteArray, Meaning> m_known; // by the record's bytes
};

} // namespace havrel::cli
