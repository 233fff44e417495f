// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_calls.h"

#include <cerrno>
#include <functional>

namespace havrel::tests {

/// Lets a test put calls of its own in the place of the system's, until it goes.
class ReplacedItemCalls
{
public:
    ReplacedItemCalls() = default;
    ~ReplacedItemCalls() { platform::itemCalls() = platform::systemItemCalls(); }
    ReplacedItemCalls(const ReplacedItemCalls&) = delete;
    ReplacedItemCalls& operator=(const ReplacedItemCalls&) = delete;
    ReplacedItemCalls(ReplacedItemCalls&&) = delete;
    ReplacedItemCalls& operator=(ReplacedItemCalls&&) = delete;

    platform::ItemCalls* operator->() { return &platform::itemCalls(); }
};

/// What a system call that fails does, whatever its arguments: for failing(ENOSPC) in the place of any call.
struct FailingCall
{
    int error;

    template<class... Arguments>
    int operator()(const Arguments&... /*ignored*/) const
    {
        errno = error;
        return -1;
    }
};

inline FailingCall failing(int error)
{
    return {error};
}

/// As the call \p real but for the calls whose number is \p failingOne, counted from 1, which fail with \p error.
template<class Result, class... Arguments>
std::function<Result(Arguments...)> failingAt(int failingOne, int error, std::function<Result(Arguments...)> real)
{
    return [failingOne, error, real, count = 0](Arguments... arguments) mutable -> Result {
        if (++count != failingOne)
            return real(arguments...);
        errno = error;
        return -1;
    };
}

} // namespace havrel::tests
