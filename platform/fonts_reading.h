// SPDX-License-Identifier: MIT
#pragma once

#include <thread>

namespace havrel::platform {

/// Reads what the first text on a screen needs, the configuration and the lists of fonts (a fifth of the time to a
/// window with text), on a thread of its own, while the program is still starting. The toolkit then finds it read, or
/// waits for the rest. Where there is no fontconfig, nothing is read.
///
/// Threads: one thread at a time.
class FontsReading
{
public:
    /// Begins.
    FontsReading();
    /// Waits until it is done.
    ~FontsReading();
    FontsReading(const FontsReading&) = delete;
    FontsReading& operator=(const FontsReading&) = delete;
    FontsReading(FontsReading&&) = delete;
    FontsReading& operator=(FontsReading&&) = delete;

private:
    std::thread m_thread;
};

} // namespace havrel::platform
