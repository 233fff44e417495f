// SPDX-License-Identifier: MIT
#pragma once

namespace havrel {

/// Tells the console, and whoever asks for a service just now, that there is no display to show windows on: the bus,
/// which has started this process for them, would not. Waits for the bus.
void tellOfMissingDisplay();

/// While the application object is made: where the toolkit finds no display it tells why and ends the process with a
/// memory dump. With this, the process tells who asks for a service, and ends with status 1 instead. One at a time.
///
/// \source Qt 6: QGuiApplicationPrivate::createPlatformIntegration, which ends in qFatal
///
/// Threads: the main thread only.
class MissingDisplayWatch
{
public:
    MissingDisplayWatch();
    ~MissingDisplayWatch();
    MissingDisplayWatch(const MissingDisplayWatch&) = delete;
    MissingDisplayWatch& operator=(const MissingDisplayWatch&) = delete;
    MissingDisplayWatch(MissingDisplayWatch&&) = delete;
    MissingDisplayWatch& operator=(MissingDisplayWatch&&) = delete;
};

} // namespace havrel
