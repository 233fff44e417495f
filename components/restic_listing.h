// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"
#include "components/restic_program.h"

namespace havrel::restic {

/// Which items of a capture are wanted.
struct Listing
{
    QString capture;
    QByteArrayList folders; ///< only these and what is directly in them; empty: all
};

/// As CaptureEngine::listItems().
///
/// The engine's JSON loses bytes that are not UTF-8; its plain output has them, but does not tell where a name ends
/// that holds a newline. Both list the same items in the same order, and the JSON knows how many newlines a name has:
/// when a name may have lost bytes, both are put together.
///
/// Threads: any thread.
void listItems(const Program& program, const Listing& listing, const CapturedItemBlock& block);

} // namespace havrel::restic
