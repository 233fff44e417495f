// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::service_address {

// Where the service application is found on the session bus. The service and its clients share these.

/// The name on the bus, by which the bus also starts the service, and the name of its desktop file.
inline constexpr const char* kBusName = "com.havrel.Service";
/// \source the desktop entry specification, "D-Bus Activation": the name with "/" for each ".".
inline constexpr const char* kObjectPath = "/com/havrel/Service";
/// The three services. Each takes a pasteboard, a{say}, and answers nothing, before its work begins.
inline constexpr const char* kInterface = "com.havrel.Services";

inline constexpr const char* kReveal = "revealInArchive";
inline constexpr const char* kCapture = "captureToArchive";
inline constexpr const char* kPreferences = "setCapturePreferences";

/// What callers are told where the service has no display to show windows on.
inline constexpr const char* kNoDisplay = "com.havrel.Error.NoDisplay";

} // namespace havrel::service_address
