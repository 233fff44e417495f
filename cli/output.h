// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::cli {

/// How a part of a line is coloured where colours are shown.
enum class Tone { Name, Quiet, Good, Bad };

/// Whether standard output shows colours: only on a terminal that has them, and not when NO_COLOR is set.
///
/// \source no-color.org
///
/// Threads: any thread.
[[nodiscard]] bool outputHasColours();

/// \p text between the codes of \p tone, or as it is where there are no colours.
///
/// Threads: any thread.
[[nodiscard]] QByteArray toned(Tone tone, const QByteArray& text);

/// Writes a record to standard output, through its buffer.
///
/// Threads: any thread.
void writeRecord(const QByteArray& record, char end = '\n');

/// Empties the buffer of standard output.
///
/// \return 0, or the errno value of what failed since the start.
///
/// Threads: any thread.
[[nodiscard]] int finishOutput();

} // namespace havrel::cli
