// SPDX-License-Identifier: MIT
#include "fs/pending_release.h"

#include "foundation/dispatch.h"
#include "foundation/unfair_lock.h"
#include "fs/file_info.h"

#include <utility>
#include <vector>

namespace havrel {
namespace {

/// Objects that are to go, and whether somebody sees to it. What the end of one leaves behind comes here again, so
/// there is seldom more than one from each list.
class PendingRelease
{
public:
    PendingRelease() { m_objects.reserve(kUsualCount); }

    void add(JNFileInfoPtr object) HAVREL_EXCLUDES(m_lock)
    {
        {
            const MutexLock lock(m_lock);
            m_objects.push_back(std::move(object));
            if (std::exchange(m_isScheduled, true))
                return;
        }
        onGlobalQueue([this] { drain(); });
    }

private:
    static constexpr std::size_t kUsualCount = 8;

    void drain()
    {
        while (take()) {
        }
    }

    /// One of the objects, which goes with the answer; null when there are none, and then nobody sees to them any more.
    JNFileInfoPtr take() HAVREL_EXCLUDES(m_lock)
    {
        const MutexLock lock(m_lock);
        if (m_objects.empty()) {
            m_isScheduled = false;
            return nullptr;
        }
        JNFileInfoPtr object = std::move(m_objects.back());
        m_objects.pop_back();
        return object;
    }

    UnfairLock m_lock;
    std::vector<JNFileInfoPtr> m_objects HAVREL_GUARDED_BY(m_lock);
    bool m_isScheduled HAVREL_GUARDED_BY(m_lock) = false;
};

} // namespace

void releaseLater(std::shared_ptr<JNFileInfo> object) noexcept
{
    static PendingRelease* const s_pending = std::make_unique<PendingRelease>().release(); // outlives every object
    s_pending->add(std::move(object));
}

} // namespace havrel
