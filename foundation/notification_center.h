// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

class QObject;

namespace havrel {

class QueueReference;

/// Something that happened, as those who asked for it are told.
struct Notification
{
    QString name;
    QVariant object{};      ///< who posted it: an object, a text, any value; nil when nobody
    QVariantMap userInfo{}; ///< what goes with it
};

/// One block's wish to be told. Ends with this object.
///
/// Threads: one thread at a time.
class NotificationRegistration
{
public:
    /// One that has ended already.
    NotificationRegistration() = default;
    ~NotificationRegistration() { end(); }
    NotificationRegistration(const NotificationRegistration&) = delete;
    NotificationRegistration& operator=(const NotificationRegistration&) = delete;
    NotificationRegistration(NotificationRegistration&&) noexcept = default;
    NotificationRegistration& operator=(NotificationRegistration&& other) noexcept;

    /// The block is not called again, even for notifications that wait on its queue. Does not wait for a call that is
    /// under way on another thread.
    void end();
    /// Calls the block no more, as end() does, but leaves what it holds until the end.
    void silence() const noexcept;
    /// Neither ended nor silenced, nor outlived by the sender that it is about.
    [[nodiscard]] bool isActive() const noexcept;
    /// Whether it is about notifications of \p sender only.
    [[nodiscard]] bool isAbout(const QObject& sender) const noexcept;

private:
    friend class NotificationCenter;
    struct Entry;
    class Entries;

    NotificationRegistration(std::shared_ptr<Entry> entry, std::weak_ptr<Entries> entries);

    std::shared_ptr<Entry> m_entry;
    std::weak_ptr<Entries> m_entries; // of the center
};

/// Tells whoever asked of what happened in this process.
///
/// Threads: any thread.
class NotificationCenter
{
public:
    using Block = std::function<void(const Notification& notification)>;

    /// The process's own. \selector defaultCenter
    [[nodiscard]] static NotificationCenter& defaultCenter();

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;
    NotificationCenter(NotificationCenter&&) = delete;
    NotificationCenter& operator=(NotificationCenter&&) = delete;

    /// Asks for the notifications of the name \p name (a null text: any) that \p object posts (nil: whoever).
    ///
    /// Objects are the same when they are one object (held by pointer or shared), other values when they are equal.
    /// Ends by itself when an object that is a QObject dies. \param queue where the block runs: at once inside the post
    /// when the post is made on that queue, else queued there;
    ///              dropped when the queue has ended. No queue: at once, on the thread of the post.
    /// \selector addObserverForName:object:queue:usingBlock:
    [[nodiscard]] NotificationRegistration
    addObserver(const QString& name, const QVariant& object, const QueueReference& queue, Block block);

    /// Tells those who asked at this moment, in the order in which they asked. What a block that runs at once throws
    /// comes out here, and the blocks after it are not told; a queued one is the matter of its queue.
    ///
    /// \selector postNotificationName:object:userInfo:
    void post(const QString& name, const QVariant& object = {}, const QVariantMap& userInfo = {});
    void post(const QString& name, QObject& object, const QVariantMap& userInfo = {});

private:
    std::shared_ptr<NotificationRegistration::Entries> m_entries;
};

} // namespace havrel
