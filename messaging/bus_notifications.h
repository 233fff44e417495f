// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "platform/bus_messages.h"
#include "platform/bus_registration.h"

#include <QString>
#include <QVariantList>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace havrel {

class BusRouter;
class Buses;

/// Distributed notifications: broadcast signals of "com.havrel.Notifications" on both buses, with the name, the object
/// (none or one text) and a mark that both copies of one notification share, so that it is told once. That there is no
/// such bus is no failure.
///
/// Anybody may speak on the machine's bus. What is said there counts when it comes from a process of this user, of the
/// one whom Process has captured, or of root, which is still there when the bus is asked about it.
///
/// Threads: any thread.
class BusNotifications : public std::enable_shared_from_this<BusNotifications>
{
public:
    using Block = std::function<void(const QString& object)>;

    explicit BusNotifications(std::shared_ptr<Buses> buses);

    void post(const QString& name, const QString& object);
    [[nodiscard]] std::shared_ptr<void> addObserver(const QString& name, Block block);
    /// Asks a bus that is newly connected for what is observed.
    void opened(platform::BusKind kind, BusRouter& router);

private:
    struct Observer
    {
        QString name;
        Block block;
    };
    using Match = std::pair<platform::BusKind, QString>;

    void caught(platform::BusKind kind, BusRouter& router, const platform::BusSignal& signal);
    void arrived(const QVariantList& values);
    void match(platform::BusKind kind, BusRouter& router, const QString& name);
    [[nodiscard]] bool isNew(const QString& mark) HAVREL_REQUIRES(m_lock);

    const std::shared_ptr<Buses> m_buses;
    Mutex m_lock;
    std::vector<std::weak_ptr<Observer>> m_observers HAVREL_GUARDED_BY(m_lock);
    std::vector<QString> m_marks HAVREL_GUARDED_BY(m_lock); // of the last notifications
    std::map<Match, platform::BusRegistration> m_matches HAVREL_GUARDED_BY(m_lock);
    std::set<QString> m_names HAVREL_GUARDED_BY(m_lock); // ever observed
};

} // namespace havrel
