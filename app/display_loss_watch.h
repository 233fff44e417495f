// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace havrel {

/// Calls \p act when the toolkit is about to end the process because the display has gone, as long as it lives; one at
/// a time. By then windows can neither be painted nor closed, but files can be written.
///
/// The X11 back end calls exit(3), the Wayland back end _exit(2) after it has told so in a message: there is no other
/// way to hear of it. \p act is called at most once, and not at an exit that is none of the toolkit's.
///
/// Threads: the main thread only.
class DisplayLossWatch
{
public:
    explicit DisplayLossWatch(std::function<void()> act);
    ~DisplayLossWatch();
    DisplayLossWatch(const DisplayLossWatch&) = delete;
    DisplayLossWatch& operator=(const DisplayLossWatch&) = delete;
    DisplayLossWatch(DisplayLossWatch&&) = delete;
    DisplayLossWatch& operator=(DisplayLossWatch&&) = delete;
};

} // namespace havrel
