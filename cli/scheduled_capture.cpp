// SPDX-License-Identifier: MIT
#include "cli/scheduled_capture.h"

#include "cli/progress_bar.h"
#include "cli/report.h"
#include "foundation/thread_annotations.h"
#include "messaging/published_connection.h"
#include "messaging/scheduler_proxy.h"
#include "platform/file_names.h"

#include <QSet>
#include <QThread>

#include <memory>
#include <optional>

namespace havrel::cli {
namespace {

using namespace Qt::StringLiterals;

constexpr unsigned long kBetweenLooks = 100; // milliseconds

/// What the scheduler has answered. When an error ends the wait, an answer may still come later.
class Answers
{
public:
    void keep(const QString& what, const QVariant& answer)
    {
        const MutexLock guard(m_lock);
        m_answers.insert(what, answer);
    }
    [[nodiscard]] QVariantMap all()
    {
        const MutexLock guard(m_lock);
        return m_answers;
    }

private:
    Mutex m_lock;
    QVariantMap m_answers HAVREL_GUARDED_BY(m_lock);
};

/// What the scheduler was doing at one moment.
struct Look
{
    QVariantList actions;
    QVariantMap runs; // by the identifier of the action
    QVariantMap volatileInfo;

    [[nodiscard]] QSet<QString> identifiers() const
    {
        QSet<QString> all;
        for (const QVariant& each : actions)
            all.insert(each.toMap().value(u"id"_s).toString());
        for (auto each = runs.keyBegin(); each != runs.keyEnd(); ++each)
            all.insert(*each);
        return all;
    }
};

class ScheduledCapture
{
public:
    ScheduledCapture(const QByteArray& archive, const QByteArrayList& items)
        : m_archive(archive)
        , m_items(items)
    {
    }

    void run(Report& report)
    {
        const std::optional<Look> before = look();
        if (!before)
            return report.failure("scheduler", u"it cannot be reached"_s);
        const auto ask = [this](const XPCProxyPtr& proxy) { SchedulerProxy(proxy).quickCapture(m_items, m_archive); };
        if (!m_scheduler->performSynchronousBlock(ask))
            return report.failure("scheduler", u"it has ended; whether it goes on when it is back is not known"_s);
        wait(before->identifiers(), report);
    }

private:
    /// Actions first: one that ends between the two questions is then in both answers.
    std::optional<Look> look()
    {
        const auto answers = std::make_shared<Answers>();
        const auto ask = [&answers](const XPCProxyPtr& proxy) {
            for (const char* each :
                 {"queryActionsInfoWithReply:", "queryRunSummariesWithReply:", "queryVolatileInfoWithReply:"})
                proxy->send(each, {}, [answers, each](const QVariantList& values) {
                    answers->keep(QLatin1StringView(each), values.value(0));
                });
        };
        if (!m_scheduler->performSynchronousBlock(ask))
            return std::nullopt;
        const QVariantMap all = answers->all();
        return Look{.actions = all.value(u"queryActionsInfoWithReply:"_s).toList(),
                    .runs = all.value(u"queryRunSummariesWithReply:"_s).toMap(),
                    .volatileInfo = all.value(u"queryVolatileInfoWithReply:"_s).toMap()};
    }

    [[nodiscard]] bool isOurs(const QVariantMap& action) const
    {
        return action.value(u"archive"_s) == m_archive &&
               action.value(u"items"_s).toList() == QVariantList(m_items.cbegin(), m_items.cend());
    }

    /// The request has no answer: it is the one that is new and asks for the same.
    [[nodiscard]] QString findIdentifier(const Look& look, const QSet<QString>& before) const
    {
        for (const QVariant& each : look.actions + QVariantList(look.runs.cbegin(), look.runs.cend()))
            if (const QString id = each.toMap().value(u"id"_s).toString(); !before.contains(id) && isOurs(each.toMap()))
                return id;
        return {};
    }

    void wait(const QSet<QString>& before, Report& report)
    {
        ProgressBar bar;
        QString id;
        while (const std::optional<Look> now = look()) {
            if (id.isNull())
                id = findIdentifier(*now, before);
            if (id.isNull())
                return report.failure(m_archive, u"the scheduler has refused it"_s);
            if (now->runs.contains(id)) {
                bar.hide();
                return tell(now->runs.value(id).toMap(), report);
            }
            const QVariantMap& info = now->volatileInfo;
            if (info.value(u"running"_s).toMap().value(u"id"_s) == id)
                bar.update(info.value(u"fraction"_s).toDouble(), info.value(u"filesDone"_s).toLongLong());
            QThread::msleep(kBetweenLooks);
        }
        bar.hide();
        report.failure("scheduler", u"it has ended, and goes on when it is back"_s);
    }

    void tell(const QVariantMap& run, Report& report) const
    {
        if (const QString reason = run.value(u"reason"_s).toString(); !reason.isEmpty())
            report.failure(m_archive, reason);
        for (const QVariant& each : run.value(u"problems"_s).toList())
            report.failure(platform::bytesOfFileName(each.toMap().value(u"item"_s).toString()),
                           each.toMap().value(u"reason"_s).toString());
    }

    const QByteArray m_archive;
    const QByteArrayList m_items;
    const std::shared_ptr<HVPublishedConnection> m_scheduler = HVConnection::schedulerConnection();
};

} // namespace

void captureByScheduler(const QByteArray& archive, const QByteArrayList& items, Report& report)
{
    ScheduledCapture(archive, items).run(report);
}

} // namespace havrel::cli
