// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace havrel::platform {

struct MountedVolume;

/// Asks volumes what may never be answered, such as one on a host that is gone: each question runs on a thread of its
/// own, and nobody waits for it longer than he wants to. A volume that has not answered yet is not asked again, so that
/// one that hangs costs a single thread however often it is asked.
///
/// Threads: any thread.
class PatientQuestions
{
public:
    struct Pending;
    /// A question that is being answered; null when no thread could be had for it.
    using Ticket = std::shared_ptr<Pending>;
    using Question = std::function<MountedVolume()>;
    using Deadline = std::chrono::steady_clock::time_point;

    /// Those of the process; never destroyed, because threads may hang to its end.
    [[nodiscard]] static PatientQuestions& shared();

    /// Begins to ask, unless the volume \p key is still being asked, and then answers that question's ticket. Does not
    /// wait. \p question runs on another thread, must not throw, and owns all that it uses.
    [[nodiscard]] Ticket ask(std::uint64_t key, Question question);

    /// Waits for the answer, at most until \p deadline; none when it has not come, or cannot.
    [[nodiscard]] static std::optional<MountedVolume> wait(const Ticket& ticket, Deadline deadline);

private:
    void run(std::uint64_t key, const Ticket& ticket, const Question& question);

    std::mutex m_mutex;
    std::map<std::uint64_t, Ticket> m_pending; // guarded by m_mutex
};

} // namespace havrel::platform
