// SPDX-License-Identifier: MIT
#include "tests/support/in_process_transport.h"

#include "foundation/dispatch.h"
#include "messaging/xpc_endpoint.h"
#include "tests/support/in_process_connection.h"
#include "tests/support/in_process_place.h"

#include <cerrno>
#include <utility>

namespace havrel::tests {

/// Who waits for distributed notifications.
struct Observers
{
    using Block = std::function<void(const QString& object)>;
    using Observer = std::pair<QString, Block>;

    Mutex lock;
    std::vector<std::weak_ptr<Observer>> all HAVREL_GUARDED_BY(lock);
};

namespace {

constexpr const char* kOwner = ":in.process";

class InProcessListener final : public XPCListener
{
public:
    explicit InProcessListener(std::shared_ptr<InProcessPlace> place)
        : m_place(std::move(place))
    {
    }
    ~InProcessListener() override { end(); }
    InProcessListener(const InProcessListener&) = delete;
    InProcessListener& operator=(const InProcessListener&) = delete;
    InProcessListener(InProcessListener&&) = delete;
    InProcessListener& operator=(InProcessListener&&) = delete;

    void setAcceptor(Acceptor acceptor) override { *m_acceptor = std::move(acceptor); }
    int resume() override
    {
        m_listens = m_place->listen(m_acceptor);
        return m_listens ? 0 : EEXIST;
    }
    void invalidate() override { end(); }
    XPCEndpoint endpoint() const override { return {kOwner, m_place->name().toLatin1()}; }

private:
    void end()
    {
        if (std::exchange(m_listens, false))
            m_place->stopListening();
    }

    const std::shared_ptr<InProcessPlace> m_place;
    const std::shared_ptr<Acceptor> m_acceptor = std::make_shared<Acceptor>();
    bool m_listens = false;
};

} // namespace

InProcessTransport::InProcessTransport()
    : m_observers(std::make_shared<Observers>())
{
}

InProcessTransport::~InProcessTransport() = default;

QString InProcessTransport::placeOf(const QString& name, quint32 options)
{
    return options & xpc_options::kPrivileged ? QStringLiteral("!") + name : name;
}

std::shared_ptr<InProcessPlace> InProcessTransport::placeNamed(const QString& place)
{
    const MutexLock guard(m_lock);
    auto& found = m_places[place];
    if (!found)
        found = std::make_shared<InProcessPlace>(*this, place);
    return found;
}

XPCConnectionPtr InProcessTransport::connectionToService(const QString& name, quint32 options)
{
    return std::make_shared<InProcessConnection>(placeNamed(placeOf(name, options)), name);
}

XPCConnectionPtr InProcessTransport::connectionToEndpoint(const XPCEndpoint& endpoint)
{
    return std::make_shared<InProcessConnection>(placeNamed(QString::fromLatin1(endpoint.pathPrefix)), QString());
}

std::unique_ptr<XPCListener> InProcessTransport::listenerForService(const QString& name, quint32 options)
{
    return std::make_unique<InProcessListener>(placeNamed(placeOf(name, options)));
}

std::unique_ptr<XPCListener> InProcessTransport::anonymousListener()
{
    int number = 0;
    {
        const MutexLock guard(m_lock);
        number = ++m_endpoints;
    }
    return std::make_unique<InProcessListener>(placeNamed(QStringLiteral("/in/process/%1").arg(number)));
}

void InProcessTransport::postDistributedNotification(const QString& name, const QString& object)
{
    const MutexLock guard(m_observers->lock);
    for (const auto& weak : m_observers->all)
        if (const auto each = weak.lock(); each && each->first == name)
            onMainQueue([weak, object] {
                if (const auto observer = weak.lock())
                    observer->second(object);
            });
}

std::shared_ptr<void> InProcessTransport::addDistributedObserver(const QString& name,
                                                                 std::function<void(const QString& object)> block)
{
    const auto observer = std::make_shared<Observers::Observer>(name, std::move(block));
    const MutexLock guard(m_observers->lock);
    std::erase_if(m_observers->all, [](const auto& each) { return each.expired(); });
    m_observers->all.push_back(observer);
    return observer;
}

void InProcessTransport::setRefusing(const QString& place, bool refusing)
{
    placeNamed(place)->setRefusing(refusing);
}

void InProcessTransport::atNextMessage(const QString& place, const QByteArray& keywordName, Fault fault)
{
    placeNamed(place)->addFault(keywordName, fault);
}

void InProcessTransport::invalidateFromFarSide(const QString& place)
{
    for (const auto& each : placeNamed(place)->accepted())
        each->invalidate();
}

void InProcessTransport::setStopped(const QString& place, bool stopped)
{
    placeNamed(place)->setStopped(stopped);
}

void InProcessTransport::setUser(const QString& place, uid_t user)
{
    placeNamed(place)->setUser(user);
}

int InProcessTransport::connectionsMade(const QString& place)
{
    return placeNamed(place)->made();
}

int InProcessTransport::connectionsOpen(const QString& place)
{
    return static_cast<int>(placeNamed(place)->accepted().size());
}

} // namespace havrel::tests
