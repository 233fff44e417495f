// SPDX-License-Identifier: MIT
#pragma once

#include "app/service_requests.h"
#include "foundation/thread_annotations.h"
#include "platform/bus_request.h"

#include <deque>
#include <optional>
#include <vector>

namespace havrel {

/// Requests between their arrival and their beginning, so that a process that ends knows those that it owes to
/// somebody.
///
/// Threads: any thread.
class RequestQueue
{
public:
    struct Waiting
    {
        ServiceRequest request = nullptr; ///< null: nothing is to be done
        Pasteboard pasteboard{};
    };
    enum class Arrival {
        Accepted, ///< it will begin: its caller may be answered
        Kept,     ///< its call was taken, and stays unanswered until the queue is closed
        Refused,  ///< it is for somebody else
    };
    /// What has not begun when the queue is closed, in the order in which it came.
    struct Rest
    {
        std::deque<Waiting> accepted;
        std::vector<platform::BusRequest> kept;
    };

    /// \p request arrives by \p call.
    [[nodiscard]] Arrival arrive(platform::BusRequest& call, Waiting request);
    /// The first one that was accepted begins; none when there is none, or when calls are kept.
    [[nodiscard]] std::optional<Waiting> begin();
    /// From here on none begins, and calls are kept. Nothing when it is closed.
    void keep();
    /// Accepts no more, unless some wait. \return whether it is closed.
    [[nodiscard]] bool closeUnlessSomeWait();
    /// Accepts no more.
    [[nodiscard]] Rest close();

private:
    enum class State { Open, Keeping, Closed };

    Mutex m_mutex;
    State m_state HAVREL_GUARDED_BY(m_mutex) = State::Open;
    Rest m_rest HAVREL_GUARDED_BY(m_mutex);
};

} // namespace havrel
