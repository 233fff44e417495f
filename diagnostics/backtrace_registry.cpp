// SPDX-License-Identifier: MIT
#include "diagnostics/backtrace_registry.h"

#include <numeric>

namespace havrel {
namespace {

constexpr auto kFresh = std::chrono::seconds(21600); // six hours

} // namespace

BacktraceRegistry::Tag BacktraceRegistry::tagFor(const platform::ReturnAddresses& addresses, LogDate date)
{
    const auto isOld = [date](const Written& written) { return date - written.date > kFresh; };
    std::uintptr_t key = std::accumulate(addresses.begin(), addresses.end(), std::uintptr_t{0});

    const MutexLock guard(m_lock);
    auto known = m_taggedBacktraces.find(key);
    while (known != m_taggedBacktraces.end() && known->second.addresses != addresses)
        known = m_taggedBacktraces.find(++key);
    if (known == m_taggedBacktraces.end()) {
        std::erase_if(m_taggedBacktraces, [&isOld](const auto& entry) { return isOld(entry.second); });
        m_taggedBacktraces.insert_or_assign(key, Written{.addresses = addresses, .date = date});
        return {.key = key, .writeFrames = true};
    }
    const bool old = isOld(known->second);
    if (old)
        known->second.date = date;
    return {.key = key, .writeFrames = old};
}

} // namespace havrel
