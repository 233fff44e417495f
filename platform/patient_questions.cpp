// SPDX-License-Identifier: MIT
#include "platform/patient_questions.h"

#include "platform/mounted_volumes.h"

#include <condition_variable>
#include <system_error>
#include <thread>
#include <utility>

namespace havrel::platform {

struct PatientQuestions::Pending
{
    std::mutex mutex;
    std::condition_variable answered;
    std::optional<MountedVolume> answer; // guarded by mutex
};

PatientQuestions& PatientQuestions::shared()
{
    static auto& s_shared = *new PatientQuestions; // NOLINT(cppcoreguidelines-owning-memory): outlives every thread
    return s_shared;
}

PatientQuestions::Ticket PatientQuestions::ask(std::uint64_t key, Question question)
{
    const std::lock_guard lock(m_mutex);
    Ticket& ticket = m_pending[key];
    if (ticket)
        return ticket;
    ticket = std::make_shared<Pending>();
    try {
        std::thread([this, key, ticket, question = std::move(question)] { run(key, ticket, question); }).detach();
        return ticket;
    } catch (const std::system_error&) {
        m_pending.erase(key);
        return nullptr;
    }
}

void PatientQuestions::run(std::uint64_t key, const Ticket& ticket, const Question& question)
{
    MountedVolume answer = question();
    {
        const std::lock_guard lock(m_mutex);
        m_pending.erase(key);
    }
    const std::lock_guard lock(ticket->mutex);
    ticket->answer = std::move(answer);
    ticket->answered.notify_all();
}

std::optional<MountedVolume> PatientQuestions::wait(const Ticket& ticket, Deadline deadline)
{
    if (!ticket)
        return std::nullopt;
    std::unique_lock lock(ticket->mutex);
    ticket->answered.wait_until(lock, deadline, [&] { return ticket->answer.has_value(); });
    return ticket->answer;
}

} // namespace havrel::platform
