// SPDX-License-Identifier: MIT
#include "cli/scheduled_capture.h"

#include "cli/archives.h"
#include "cli/progress_bar.h"
#include "cli/report.h"
#include "components/scheduler_notices.h"
#include "foundation/dispatch.h"
#include "foundation/main_queue_wall.h"
#include "foundation/notification_center.h"
#include "foundation/thread_annotations.h"
#include "messaging/published_connection.h"
#include "messaging/scheduler_proxy.h"
#include "messaging/shared_connections.h"
#include "messaging/switchboard_connection.h"
#include "platform/file_names.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace havrel::cli {
namespace {

using namespace Qt::StringLiterals;

constexpr const char* kActions = "queryActionsInfoWithReply:";
constexpr const char* kRuns = "queryRunSummariesWithReply:";
constexpr const char* kVolatileInfo = "queryVolatileInfoWithReply:";

/// What the scheduler has answered, by message. When an error ends the wait, an answer may still come later.
class Answers
{
public:
    void keep(const char* message, const QVariantList& values)
    {
        const MutexLock guard(m_lock);
        m_answers.insert(QLatin1StringView(message), values.value(0));
    }
    [[nodiscard]] QVariant to(const char* message)
    {
        const MutexLock guard(m_lock);
        return m_answers.value(QLatin1StringView(message));
    }

private:
    Mutex m_lock;
    QVariantMap m_answers HAVREL_GUARDED_BY(m_lock);
};

/// One request, from asking for it to its end. Waits for what the scheduler tells by notifications; whenever one may
/// have been missed, because a connection was lost, it looks itself.
///
/// Threads: the main thread only.
class ScheduledCapture : public std::enable_shared_from_this<ScheduledCapture>
{
public:
    ScheduledCapture(const QByteArray& archive, const QByteArrayList& items, Report& report)
        : m_archive(archive)
        , m_items(items)
        , m_report(report)
    {
    }

    void run()
    {
        listen();
        ask();
        look(); // it may have been quick
        if (!m_isOver)
            QCoreApplication::exec();
    }

private:
    using Handler = void (ScheduledCapture::*)(const QVariantMap& info);

    void listen()
    {
        observe(scheduler_notices::kEnded, &ScheduledCapture::ended);
        observe(scheduler_notices::kProgressed, &ScheduledCapture::progressed);
        m_losses = NotificationCenter::defaultCenter().addObserver(
            connection_notification::kWasDisconnected, {}, {}, [this](const Notification&) { lost(); });
    }
    /// Notifications come on another thread, and may still come when all is over.
    void observe(QLatin1StringView notice, Handler handler)
    {
        const auto handle = [weak = weak_from_this(), handler](const std::optional<QString>&, const QVariantMap& info) {
            onMainQueue([weak, handler, info] {
                if (const auto live = weak.lock())
                    live->take(handler, info);
            });
        };
        m_switchboard->addObserver(notice.toString(), notice, scheduler_notices::kSource.toString(), handle);
    }
    void take(Handler handler, const QVariantMap& info)
    {
        if (!m_isOver && info.value(scheduler_notices::kID) == m_id)
            (this->*handler)(info);
    }

    void ended(const QVariantMap& /*info*/) { look(); }
    void progressed(const QVariantMap& info)
    {
        m_bar.update(info.value(u"fraction"_s).toDouble(), info.value(u"filesDone"_s).toLongLong());
    }
    /// The switchboard has forgotten who observes: a new connection tells it.
    void lost()
    {
        if (m_isOver)
            return;
        if (m_switchboard->serviceProxy())
            look();
        else
            fail("switchboard", u"it has ended; the scheduler goes on"_s);
    }

    void ask()
    {
        const auto answers = std::make_shared<Answers>();
        const SyncOutcome outcome = m_scheduler->performSynchronousBlock([&](const XPCProxyPtr& proxy) {
            SchedulerProxy(proxy).quickCapture(m_items, m_archive);
            query(proxy, kVolatileInfo, answers);
        });
        const QVariant asked = answers->to(kVolatileInfo).toMap().value(u"asked"_s);
        m_id = asked.toString();
        if (!outcome)
            fail("scheduler",
                 outcome.error ? u"it has ended; whether it goes on when it is back is not known"_s
                               : u"it cannot be reached: there is no session bus, or the components are not "
                                 "installed (havrel components run starts them)"_s);
        else if (!asked.isValid())
            fail("scheduler", u"it does not tell what becomes of the request"_s);
        else if (m_id.isEmpty())
            fail(m_archive, u"the scheduler has refused it"_s);
    }

    void look()
    {
        if (m_isOver)
            return;
        const auto answers = std::make_shared<Answers>();
        if (!inquire(answers)) {
            m_scheduler->disconnect(); // it may just have died: the next one knows of it, too
            if (!inquire(answers))
                return fail("scheduler", u"it has ended, and goes on when it is back"_s);
        }
        const QVariantMap runs = answers->to(kRuns).toMap();
        if (runs.contains(m_id))
            tell(runs.value(m_id).toMap());
        else if (!isAmong(answers->to(kActions).toList()))
            fail("scheduler", u"it does not know of the capture any more"_s);
    }
    /// Actions first: one that ends between the two questions is then in both answers.
    [[nodiscard]] bool inquire(const std::shared_ptr<Answers>& answers)
    {
        return m_scheduler
            ->performSynchronousBlock([&answers](const XPCProxyPtr& proxy) {
                query(proxy, kActions, answers);
                query(proxy, kRuns, answers);
            })
            .succeeded;
    }
    static void query(const XPCProxyPtr& proxy, const char* message, const std::shared_ptr<Answers>& answers)
    {
        proxy->send(message, {}, [answers, message](const QVariantList& values) { answers->keep(message, values); });
    }
    [[nodiscard]] bool isAmong(const QVariantList& actions) const
    {
        return std::any_of(actions.begin(), actions.end(), [this](const QVariant& each) {
            return each.toMap().value(u"id"_s) == m_id;
        });
    }

    void tell(const QVariantMap& run)
    {
        end();
        if (const QString reason = run.value(u"reason"_s).toString(); !reason.isEmpty())
            m_report.failure(m_archive, failureText(reason, run.value(u"words"_s).toString()));
        const QVariantList problems = run.value(u"problems"_s).toList();
        for (const QVariant& each : problems)
            m_report.failure(platform::bytesOfFileName(each.toMap().value(u"item"_s).toString()),
                             each.toMap().value(u"reason"_s).toString());
        if (const qint64 rest = run.value(u"problemCount"_s).toLongLong() - problems.size(); rest > 0)
            m_report.failure(m_archive, u"%1 more items could not be captured"_s.arg(rest));
    }
    void fail(const QByteArray& what, const QString& why)
    {
        end();
        m_report.failure(what, why);
    }
    void end()
    {
        m_isOver = true;
        m_bar.hide();
        QCoreApplication::quit();
    }

    const QByteArray m_archive;
    const QByteArrayList m_items;
    Report& m_report;
    ProgressBar m_bar;
    const std::shared_ptr<HVSwitchboardConnection> m_switchboard = HVConnection::switchboardConnection();
    const std::shared_ptr<HVPublishedConnection> m_scheduler = HVConnection::schedulerConnection();
    NotificationRegistration m_losses;
    QString m_id;
    bool m_isOver = false;
};

} // namespace

void captureByScheduler(const QByteArray& archive, const QByteArrayList& items, Report& report)
{
    int count = 1;
    QByteArray name("havrel");
    std::array<char*, 2> arguments{name.data(), nullptr};
    const CoreApplication application(count, arguments.data());
    std::make_shared<ScheduledCapture>(archive, items, report)->run();
    SharedConnections::all().forget();
}

} // namespace havrel::cli
