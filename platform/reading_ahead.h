// SPDX-License-Identifier: MIT
#pragma once

#include <thread>

namespace havrel::platform {

/// Reads, on a thread of its own while the program is still starting, what its first window will need: the
/// configuration and the lists of fonts, which take a fifth of the time to a window with text. The toolkit then finds
/// them read, or waits for the rest. Where there is no fontconfig, nothing is read.
///
/// Threads: one thread at a time.
class ReadingAhead
{
public:
    /// Begins.
    ReadingAhead();
    /// Waits until it is done.
    ~ReadingAhead();
    ReadingAhead(const ReadingAhead&) = delete;
    ReadingAhead& operator=(const ReadingAhead&) = delete;
    ReadingAhead(ReadingAhead&&) = delete;
    ReadingAhead& operator=(ReadingAhead&&) = delete;

private:
    std::thread m_thread;
};

} // namespace havrel::platform
