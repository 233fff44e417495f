// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace havrel {

/// Calls \p act when the toolkit is about to end the process because the display has gone, as long as it lives; one at
/// a time. By then windows can neither be painted nor closed, but files can be written.
///
/// The toolkit tells so in a message of its log and exits: that message is the only moment that it gives. Watching the
/// connection's socket beside it would be a race: whoever wakes the main thread first wins it, and the toolkit exits
/// there. Later, in exit(3), objects that live as long as the process have begun to go, and the toolkit's plugin for
/// Wayland does not even run that. Warnings of the toolkit are switched on for this, whatever the logging rules say.
/// \p act is called at most once.
///
/// \source the texts of Qt 6: QXcbConnection::processXcbEvents, QWaylandDisplay::checkWaylandError
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
