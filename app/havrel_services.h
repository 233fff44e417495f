// SPDX-License-Identifier: MIT
#pragma once

#include "app/service_requests.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QList>
#include <QUrl>

#include <memory>

namespace havrel {

class ServiceApplicationDelegate;

/// The three services. Each tells the delegate that it is busy, takes the items from the pasteboard, and does nothing
/// more when there are none. What goes wrong is told by log or alert.
///
/// Threads: the main thread only.
class HavrelServices final : public ServiceRequests
{
    Q_DECLARE_TR_FUNCTIONS(havrel::HavrelServices)

public:
    /// Works with the delegate that the application has at this moment, and keeps it. \selector init
    HavrelServices();
    ~HavrelServices() override;
    HavrelServices(const HavrelServices&) = delete;
    HavrelServices& operator=(const HavrelServices&) = delete;
    HavrelServices(HavrelServices&&) = delete;
    HavrelServices& operator=(HavrelServices&&) = delete;

    /// The process's own, made on the first call. \selector sharedServices
    [[nodiscard]] static HavrelServices& sharedServices();
    /// At the end of main: windows, which the delegate keeps, must not outlive the application object.
    static void forgetSharedServices();

    /// Lets the user pick an archive, in which the client application is asked to show the items.
    /// \selector revealInArchive:userData:error:
    void revealInArchive(const Pasteboard& pasteboard) override;
    /// Lets the user pick an archive, into which the scheduler is asked to capture the items.
    /// \selector captureToArchive:userData:error:
    void captureToArchive(const Pasteboard& pasteboard) override;
    /// Opens a new window with the capture preferences of the items, if one of them can be edited.
    /// \selector setCapturePreferences:userData:error:
    void setCapturePreferences(const Pasteboard& pasteboard) override;

    /// The file URLs on \p pasteboard; only if it has no list of URLs at all, not even an empty one, those of the paths
    /// in its text that name something. None at all is logged. \selector urlsFromPasteboard:
    [[nodiscard]] static QList<QUrl> urlsFromPasteboard(const Pasteboard& pasteboard);
    /// The paths of \p urls in order; those that have none are left out. \selector pathArrayForURLs:
    [[nodiscard]] static QByteArrayList pathArrayForURLs(const QList<QUrl>& urls);

private:
    struct Picking;

    [[nodiscard]] QList<QUrl> opened(const Pasteboard& pasteboard);
    void pickArchive(const QList<QUrl>& urls, const Picking& picking);
    void openInClient(const QByteArrayList& itemPaths, const QUrl& archive);
    void capture(const QByteArrayList& itemPaths, const QUrl& archive);

    std::shared_ptr<ServiceApplicationDelegate> m_appDelegate;
};

} // namespace havrel
