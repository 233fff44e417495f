// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace havrel {

/// What an observer in this process wants to hear of the switchboard's notifications, and the block that hears it.
///
/// Threads: any thread.
class LocalObserver
{
public:
    /// \param source who has posted it; none: nobody said so. \param info what goes with it.
    using Block = std::function<void(const std::optional<QString>& source, const QVariantMap& info)>;

    /// \param source whose notifications; none: anybody's. \selector initWithNotification:source:block:
    LocalObserver(QString notificationName, std::optional<QString> source, Block block);

    /// \selector notificationName
    [[nodiscard]] const QString& notificationName() const noexcept { return m_notificationName; }
    [[nodiscard]] const std::optional<QString>& sourceID() const noexcept { return m_sourceID; } ///< \selector sourceID

    /// Calls the block, here and now. \selector forwardNotificationFromSource:withInfo:
    void forwardNotificationFromSource(const std::optional<QString>& source, const QVariantMap& info) const;

private:
    const Block m_proxyBlock;
    const QString m_notificationName;
    const std::optional<QString> m_sourceID;
};

} // namespace havrel
