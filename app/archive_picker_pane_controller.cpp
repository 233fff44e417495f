// SPDX-License-Identifier: MIT
#include "app/archive_picker_pane_controller.h"

#include "app/archive_description.h"
#include "app/archive_open_panel.h"
#include "app/archive_picker_pane.h"
#include "app/service_application_delegate.h"
#include "foundation/dispatch.h"
#include "messaging/connection.h"
#include "messaging/monitor_proxy.h"

#include <QPointer>
#include <QSet>

#include <ui_ArchivePickerPane.h>

namespace havrel {
namespace {

/// Those of \p recent that are not among \p ofItems.
QList<QVariantMap> othersOf(const QList<QVariantMap>& recent, const QList<QVariantMap>& ofItems)
{
    QSet<QByteArray> paths;
    for (const QVariantMap& each : ofItems)
        paths.insert(archive_description::pathOf(each));
    QList<QVariantMap> others;
    for (const QVariantMap& each : recent)
        if (!paths.contains(archive_description::pathOf(each)))
            others.append(each);
    return others;
}

/// A title is no place for access keys: what looks like one is part of it.
QString withoutAccessKeys(QString title)
{
    return title.replace(u'&', QStringLiteral("&&"));
}

} // namespace

ArchivePickerPaneController::ArchivePickerPaneController()
    : m_window(std::make_unique<ArchivePickerPane>())
{
    connectControls();
}

ArchivePickerPaneController::~ArchivePickerPaneController()
{
    m_window->disconnect(this); // that it goes is nobody's news
}

std::shared_ptr<ArchivePickerPaneController> ArchivePickerPaneController::makePickerPane()
{
    return std::make_shared<ArchivePickerPaneController>();
}

ArchivePickerPaneController::Running& ArchivePickerPaneController::running()
{
    static Running running;
    return running;
}

const ArchivePickerPaneController::Running& ArchivePickerPaneController::runningPickers()
{
    return running();
}

void ArchivePickerPaneController::forgetRunningPickers()
{
    const Running gone = std::exchange(running(), {});
}

void ArchivePickerPaneController::connectControls()
{
    const Ui::ArchivePickerPane& outlets = m_window->outlets();
    const auto choose = [this] { runAtWall([this] { performArchiveAction(); }); };
    connect(outlets.actionButton, &QPushButton::clicked, this, choose);
    connect(outlets.tableView, &QAbstractItemView::doubleClicked, this, choose);
    connect(outlets.cancelButton, &QPushButton::clicked, this, [this] { cancel(); });
    connect(outlets.otherButton, &QPushButton::clicked, this, [this] { runAtWall([this] { otherArchive(); }); });
    connect(m_window.get(), &QDialog::finished, this, [this] { windowWillClose(); });
}

ArchivePickerViewController& ArchivePickerPaneController::pickerViewController() const
{
    return m_window->pickerViewController();
}

QLabel& ArchivePickerPaneController::titleField() const
{
    return *m_window->outlets().titleField;
}

QPushButton& ArchivePickerPaneController::actionButton() const
{
    return *m_window->outlets().actionButton;
}

void ArchivePickerPaneController::runWithArchivesForItems(const QByteArrayList& itemPaths)
{
    running().insert(shared_from_this());
    titleField().setText(m_prompt.isNull() ? tr("Choose archive:") : m_prompt);
    actionButton().setText(m_actionTitle.isNull() ? tr("Open") : withoutAccessKeys(m_actionTitle));
    populateWithArchivesForItems(itemPaths);
    actionButton().setEnabled(pickerViewController().choices());
    pickerViewController().selectFirstArchive();
    m_window->restoreFrame();
    m_window->sizeToFit(); // so that it comes up where there is room for it
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

/// The replies come on the connection's reply queue while this thread waits. One that comes too late, after a failure,
/// finds what it writes to still there.
std::shared_ptr<const ArchivePickerPaneController::Archives>
ArchivePickerPaneController::archivesForItems(const QByteArrayList& itemPaths)
{
    const auto archives = std::make_shared<Archives>();
    const auto ask = [&itemPaths, &archives](const XPCProxyPtr& proxy) {
        const MonitorProxy monitor(proxy);
        monitor.refreshRecentRepositoryCache();
        monitor.queryRepositoriesForItems(itemPaths, [archives](const auto& reply) { archives->ofItems = reply; });
        monitor.queryRecentlyCapturedRepositories([archives](const auto& reply) { archives->recent = reply; });
    };
    const HVConnectionPtr monitor = ServiceApplicationDelegate::ofApplication()->monitorConnection();
    return monitor && monitor->performSynchronousBlock(ask) ? archives : nullptr;
}

void ArchivePickerPaneController::populateWithArchivesForItems(const QByteArrayList& itemPaths)
{
    const auto archives = archivesForItems(itemPaths);
    if (!archives) {
        ServiceApplicationDelegate::ofApplication()->noMonitorAlert();
        return;
    }
    pickerViewController().addArchiveInfo(archives->ofItems, QStringLiteral("recent"));
    pickerViewController().addArchiveInfo(othersOf(archives->recent, archives->ofItems), QStringLiteral("other"));
}

void ArchivePickerPaneController::performArchiveAction()
{
    const auto self = shared_from_this(); // the action may handle events
    const QUrl archive = pickerViewController().selectedArchive();
    if (!archive.isValid())
        return;
    performActionWithArchive(archive);
    m_window->close();
}

void ArchivePickerPaneController::cancel()
{
    m_window->close();
}

void ArchivePickerPaneController::otherArchive()
{
    auto* panel = new ArchiveOpenPanel(*m_window, pickerViewController().selectedArchive());
    connect(panel, &ArchiveOpenPanel::chosen, this, [this](const QUrl& archive) {
        runAtWall([this, &archive] { performActionThenClose(archive); });
    });
    panel->open();
}

void ArchivePickerPaneController::performActionThenClose(const QUrl& archive)
{
    const auto self = shared_from_this();
    performActionWithArchive(archive);
    onMainQueue([self] { self->m_window->close(); });
}

void ArchivePickerPaneController::performActionWithArchive(const QUrl& archive)
{
    if (m_actionBlock)
        m_actionBlock(archive);
}

void ArchivePickerPaneController::windowWillClose()
{
    m_window->saveFrame();
    onMainQueue([self = shared_from_this()] { running().erase(self); });
}

} // namespace havrel
