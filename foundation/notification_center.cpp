// SPDX-License-Identifier: MIT
#include "foundation/notification_center.h"

#include "foundation/deallocator.h"
#include "foundation/dispatch.h"
#include "foundation/property_access.h"
#include "foundation/thread_annotations.h"

#include <atomic>
#include <unordered_set>
#include <utility>
#include <vector>

namespace havrel {
namespace {

/// Who a notification is from, in a form that compares: the object itself, or a value.
struct Sender
{
    explicit Sender(const QVariant& value)
        : object(objectIn(value))
        , other(object ? QVariant() : value)
    {
    }

    friend bool operator==(const Sender&, const Sender&) = default;
    [[nodiscard]] bool isNobody() const { return !object && !other.isValid(); }

    QObject* object; // only compared
    QVariant other;
};

} // namespace

struct NotificationRegistration::Entry
{
    Entry(const QString& wantedName, Sender wantedSender, const QueueReference& on, NotificationCenter::Block run)
        : name(wantedName)
        , sender(std::move(wantedSender))
        , queue(on)
        , block(std::move(run))
    {
    }

    [[nodiscard]] bool wants(const QString& postedName, const Sender& poster) const
    {
        return (name.isNull() || name == postedName) && (sender.isNobody() || sender == poster);
    }

    const QString name;
    const Sender sender;
    const QueueReference queue;
    const NotificationCenter::Block block;
    std::atomic<bool> active{true};
};

/// The entries of a center, in the order in which they came.
class NotificationRegistration::Entries : public std::enable_shared_from_this<NotificationRegistration::Entries>
{
public:
    void add(const std::shared_ptr<Entry>& entry);
    void remove(const Entry& entry);
    [[nodiscard]] std::vector<std::shared_ptr<Entry>> wanting(const QString& name, const Sender& sender);

private:
    void endWith(QObject& sender);
    void forget(const QObject* sender);
    template<class Condition>
    std::vector<std::shared_ptr<Entry>> takeIf(Condition condition) HAVREL_REQUIRES(m_lock);

    Mutex m_lock;
    std::vector<std::shared_ptr<Entry>> m_entries HAVREL_GUARDED_BY(m_lock);
    std::unordered_set<const QObject*> m_watchedSenders HAVREL_GUARDED_BY(m_lock); // we hear of their death
};

void NotificationRegistration::Entries::add(const std::shared_ptr<Entry>& entry)
{
    if (entry->sender.object)
        endWith(*entry->sender.object);
    const MutexLock guard(m_lock);
    m_entries.push_back(entry);
}

void NotificationRegistration::Entries::endWith(QObject& sender)
{
    {
        const MutexLock guard(m_lock);
        if (!m_watchedSenders.insert(&sender).second)
            return;
    }
    mtk_addDeallocationCallback(sender, [weak = weak_from_this()](const QObject* dying) {
        if (const auto entries = weak.lock())
            entries->forget(dying);
    });
}

/// Its address goes too: the next object there is another one, whose death we must hear of anew.
void NotificationRegistration::Entries::forget(const QObject* sender)
{
    std::vector<std::shared_ptr<Entry>> removed; // what their blocks hold goes outside the lock
    const MutexLock guard(m_lock);
    m_watchedSenders.erase(sender);
    removed = takeIf([sender](const Entry& entry) { return entry.sender.object == sender; });
}

void NotificationRegistration::Entries::remove(const Entry& entry)
{
    std::vector<std::shared_ptr<Entry>> removed; // what their blocks hold goes outside the lock
    const MutexLock guard(m_lock);
    removed = takeIf([&entry](const Entry& each) { return &each == &entry; });
}

/// Removes and ends the entries.
template<class Condition>
auto NotificationRegistration::Entries::takeIf(Condition condition) -> std::vector<std::shared_ptr<Entry>>
{
    std::vector<std::shared_ptr<Entry>> left;
    std::vector<std::shared_ptr<Entry>> removed;
    for (auto& entry : m_entries)
        (condition(*entry) ? removed : left).push_back(std::move(entry));
    m_entries.swap(left);
    for (const auto& entry : removed)
        entry->active = false;
    return removed;
}

auto NotificationRegistration::Entries::wanting(const QString& name, const Sender& sender)
    -> std::vector<std::shared_ptr<Entry>>
{
    std::vector<std::shared_ptr<Entry>> result;
    const MutexLock guard(m_lock);
    for (const auto& entry : m_entries) {
        if (entry->wants(name, sender))
            result.push_back(entry);
    }
    return result;
}

NotificationRegistration::NotificationRegistration(std::shared_ptr<Entry> entry, std::weak_ptr<Entries> entries)
    : m_entry(std::move(entry))
    , m_entries(std::move(entries))
{
}

NotificationRegistration& NotificationRegistration::operator=(NotificationRegistration&& other) noexcept
{
    if (this != &other) {
        end();
        m_entry = std::move(other.m_entry);
        m_entries = std::move(other.m_entries);
    }
    return *this;
}

void NotificationRegistration::end()
{
    const auto entry = std::exchange(m_entry, nullptr);
    if (!entry)
        return;
    entry->active = false;
    if (const auto entries = m_entries.lock())
        entries->remove(*entry);
}

void NotificationRegistration::silence() const noexcept
{
    if (m_entry)
        m_entry->active = false;
}

bool NotificationRegistration::isActive() const noexcept
{
    return m_entry && m_entry->active;
}

bool NotificationRegistration::isAbout(const QObject& sender) const noexcept
{
    return m_entry && m_entry->sender.object == &sender;
}

NotificationCenter& NotificationCenter::defaultCenter()
{
    // Never destroyed: objects may post, and end their registrations, while the process ends.
    static NotificationCenter* const s_default = std::make_unique<NotificationCenter>().release();
    return *s_default;
}

NotificationCenter::NotificationCenter()
    : m_entries(std::make_shared<NotificationRegistration::Entries>())
{
}

NotificationCenter::~NotificationCenter() = default;

NotificationRegistration
NotificationCenter::addObserver(const QString& name, const QVariant& object, const QueueReference& queue, Block block)
{
    if (!block)
        return {};
    const auto entry = std::make_shared<NotificationRegistration::Entry>(name, Sender(object), queue, std::move(block));
    m_entries->add(entry);
    return {entry, m_entries};
}

void NotificationCenter::post(const QString& name, const QVariant& object, const QVariantMap& userInfo)
{
    const Notification notification{name, object, userInfo};
    for (const auto& entry : m_entries->wanting(name, Sender(object))) {
        if (!entry->active)
            continue; // a block before it has ended it
        if (entry->queue.isNone() || entry->queue.isCurrent())
            entry->block(notification);
        else
            (void)entry->queue.async([entry, notification] {
                if (entry->active)
                    entry->block(notification);
            });
    }
}

void NotificationCenter::post(const QString& name, QObject& object, const QVariantMap& userInfo)
{
    post(name, QVariant::fromValue(&object), userInfo);
}

} // namespace havrel
