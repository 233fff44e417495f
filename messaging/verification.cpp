// SPDX-License-Identifier: MIT
#include "messaging/verification.h"

#include "foundation/condition_lock.h"
#include "foundation/thread_annotations.h"
#include "messaging/component_proxy.h"
#include "messaging/sync_outcome.h"
#include "messaging/xpc_connection.h"

#include <memory>
#include <utility>

namespace havrel {
namespace {

/// What the handlers tell: the first one counts, and others may come when nobody waits any more.
class Verification
{
public:
    void tell(const std::optional<Error>& error)
    {
        {
            const MutexLock guard(m_lock);
            if (std::exchange(m_isTold, true))
                return;
            m_error = error;
        }
        m_message->messageReplied();
    }
    [[nodiscard]] std::optional<Error> outcome()
    {
        m_message->waitForMessageReply();
        const MutexLock guard(m_lock);
        return m_error;
    }

private:
    const std::shared_ptr<ConditionLock> m_message = ConditionLock::messageLock();
    Mutex m_lock;
    bool m_isTold HAVREL_GUARDED_BY(m_lock) = false;
    std::optional<Error> m_error HAVREL_GUARDED_BY(m_lock);
};

} // namespace

std::optional<Error> verificationErrorOf(XPCConnection& candidate)
{
    const auto verification = std::make_shared<Verification>();
    const ComponentProxy component(
        candidate.remoteObjectProxyWithErrorHandler([verification](const Error& error) { verification->tell(error); }));
    if (!component)
        return invalidConnectionError();
    component.barrier([verification] { verification->tell(std::nullopt); });
    return verification->outcome();
}

} // namespace havrel
