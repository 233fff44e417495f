// SPDX-License-Identifier: MIT
#include "app/havrel_services.h"

#include "app/archive_picker_pane_controller.h"
#include "app/pasteboard_items.h"
#include "app/service_application_delegate.h"
#include "capture_prefs_ui/capture_preferences_controller.h"
#include "diagnostics/logr.h"
#include "foundation/array_additions.h"
#include "foundation/error.h"
#include "fs/path.h"
#include "messaging/connection.h"
#include "messaging/scheduler_proxy.h"
#include "platform/applications.h"

#include <functional>

namespace havrel {
namespace {

std::unique_ptr<HavrelServices>& shared()
{
    static std::unique_ptr<HavrelServices> services;
    return services;
}

/// The prompt for one item, with its name, or for any other number.
QString promptFor(const QList<QUrl>& urls, const QString& forOne, const std::function<QString(int)>& forCount)
{
    if (urls.size() != 1)
        return forCount(static_cast<int>(urls.size()));
    const JNPathPtr path = JNPath::pathWithURL(urls.first());
    return forOne.arg(path ? path->displayName() : QString());
}

} // namespace

struct HavrelServices::Picking
{
    QString prompt;
    QString actionTitle;
    std::function<void(const QByteArrayList& itemPaths, const QUrl& archive)> action;
};

HavrelServices::HavrelServices()
    : m_appDelegate(ServiceApplicationDelegate::ofApplication())
{
}

HavrelServices::~HavrelServices() = default;

HavrelServices& HavrelServices::sharedServices()
{
    if (!shared())
        shared() = std::make_unique<HavrelServices>();
    return *shared();
}

void HavrelServices::forgetSharedServices()
{
    shared().reset();
}

QList<QUrl> HavrelServices::urlsFromPasteboard(const Pasteboard& pasteboard)
{
    const std::optional<QList<QUrl>> given = fileURLsOnPasteboard(pasteboard);
    QList<QUrl> urls = given ? *given : reachableURLsOnPasteboard(pasteboard);
    if (urls.isEmpty())
        Logr::log(LogClassification::Curious,
                  QStringLiteral("Unrecognized clipboard contents; service performed no action"));
    return urls;
}

QByteArrayList HavrelServices::pathArrayForURLs(const QList<QUrl>& urls)
{
    const auto pathOf = [](const QVariant& url, qsizetype, bool&) -> QVariant {
        const JNPathPtr path = JNPath::pathWithURL(url.toUrl());
        return path && !path->cPath().isEmpty() ? path->cPath() : QVariant();
    };
    QByteArrayList paths;
    const QVariantList found = translateArrayUsingBlock(QVariantList(urls.cbegin(), urls.cend()), pathOf);
    for (const QVariant& each : found)
        paths.append(each.toByteArray());
    return paths;
}

QList<QUrl> HavrelServices::opened(const Pasteboard& pasteboard)
{
    m_appDelegate->busy();
    return urlsFromPasteboard(pasteboard);
}

void HavrelServices::revealInArchive(const Pasteboard& pasteboard)
{
    const QList<QUrl> urls = opened(pasteboard);
    if (urls.isEmpty())
        return;
    const auto counted = [](int count) { return tr("Reveal %n items in:", nullptr, count); };
    pickArchive(urls,
                {.prompt = promptFor(urls, tr("Reveal \"%1\" in:"), counted),
                 .actionTitle = tr("Reveal"),
                 .action = [this](const auto& paths, const QUrl& archive) { openInClient(paths, archive); }});
}

void HavrelServices::captureToArchive(const Pasteboard& pasteboard)
{
    const QList<QUrl> urls = opened(pasteboard);
    if (urls.isEmpty())
        return;
    const auto counted = [](int count) { return tr("Capture %n items to:", nullptr, count); };
    pickArchive(urls,
                {.prompt = promptFor(urls, tr("Capture \"%1\" to:"), counted),
                 .actionTitle = tr("Capture"),
                 .action = [this](const auto& paths, const QUrl& archive) { capture(paths, archive); }});
}

void HavrelServices::setCapturePreferences(const Pasteboard& pasteboard)
{
    const QList<QUrl> urls = opened(pasteboard);
    if (urls.isEmpty())
        return;
    const auto controller = m_appDelegate->makeCapturePreferencesController();
    if (controller->prepareWithItems(urls))
        controller->showWindow();
}

void HavrelServices::pickArchive(const QList<QUrl>& urls, const Picking& picking)
{
    const std::shared_ptr<ArchivePickerPaneController> picker = ArchivePickerPaneController::makePickerPane();
    const QByteArrayList paths = pathArrayForURLs(urls);
    picker->setPrompt(picking.prompt);
    picker->setActionTitle(picking.actionTitle);
    picker->setActionBlock([paths, action = picking.action](const QUrl& archive) { action(paths, archive); });
    picker->runWithArchivesForItems(paths);
}

void HavrelServices::openInClient(const QByteArrayList& itemPaths, const QUrl& archive)
{
    const platform::OpenRequest request{{archive.toEncoded(QUrl::FullyEncoded)}, {1, itemPaths}};
    if (const int failure = m_appDelegate->applications().open(kClientApplication, request))
        Logr::logError(LogClassification::Failure,
                       QStringLiteral("cannot open the archive with the client application"),
                       Error::posix(failure));
}

void HavrelServices::capture(const QByteArrayList& itemPaths, const QUrl& archive)
{
    const JNPathPtr path = JNPath::pathWithURL(archive);
    const HVConnectionPtr scheduler = m_appDelegate->schedulerConnection();
    const auto send = [&itemPaths, &path](const XPCProxyPtr& proxy) {
        SchedulerProxy(proxy).quickCapture(itemPaths, path->cPath());
    };
    if (!path || !scheduler || !scheduler->performSynchronousBlock(send))
        m_appDelegate->noSchedulerAlert();
}

} // namespace havrel
