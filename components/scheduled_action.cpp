// SPDX-License-Identifier: MIT
#include "components/scheduled_action.h"

#include <algorithm>

namespace havrel {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kMostProblems = 1000;

QVariantList described(const QList<EngineProblem>& problems)
{
    QVariantList all;
    std::for_each_n(problems.begin(), std::min(problems.size(), kMostProblems), [&all](const EngineProblem& each) {
        all.append(QVariantMap{{u"item"_s, each.item}, {u"reason"_s, each.reason}});
    });
    return all;
}

} // namespace

QVariantMap ScheduledAction::asDictionary() const
{
    return {{u"id"_s, id},
            {u"kind"_s, u"quickCapture"_s},
            {u"archive"_s, archive},
            {u"items"_s, QVariantList(items.cbegin(), items.cend())},
            {u"time"_s, time},
            {u"suspended"_s, suspended},
            {u"attempts"_s, attempts}};
}

std::optional<ScheduledAction> ScheduledAction::fromDictionary(const QVariantMap& dictionary)
{
    ScheduledAction action{.id = dictionary.value(u"id"_s).toString(),
                           .archive = dictionary.value(u"archive"_s).toByteArray(),
                           .items = {},
                           .time = dictionary.value(u"time"_s).toDouble(),
                           .suspended = dictionary.value(u"suspended"_s).toBool(),
                           .attempts = dictionary.value(u"attempts"_s).toInt()};
    for (const QVariant& each : dictionary.value(u"items"_s).toList())
        action.items.append(each.toByteArray());
    if (action.id.isEmpty() || action.archive.isEmpty() || action.items.isEmpty())
        return std::nullopt;
    return action;
}

QVariantMap RunSummary::asDictionary() const
{
    QVariantMap result = action.asDictionary();
    for (const QString& each : {u"time"_s, u"suspended"_s, u"attempts"_s})
        result.remove(each);
    result.insert({{u"started"_s, started}, {u"ended"_s, ended}});
    if (!reason.isNull()) {
        result.insert({{u"outcome"_s, u"failed"_s}, {u"reason"_s, reason}, {u"fault"_s, fault}});
        if (!words.isEmpty())
            result.insert(u"words"_s, words);
        return result;
    }
    result.insert({{u"outcome"_s, summary.problems.isEmpty() ? u"done"_s : u"problems"_s},
                   {u"capture"_s, summary.capture},
                   {u"filesNew"_s, summary.filesNew},
                   {u"filesChanged"_s, summary.filesChanged},
                   {u"filesUnmodified"_s, summary.filesUnmodified},
                   {u"bytesProcessed"_s, summary.bytesProcessed},
                   {u"bytesAdded"_s, summary.bytesAdded},
                   {u"problemCount"_s, qint64{summary.problems.size()}},
                   {u"problems"_s, described(summary.problems)}});
    return result;
}

} // namespace havrel
