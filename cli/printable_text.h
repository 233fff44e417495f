// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel::cli {

// What people read is one line and cannot steer their terminal: control characters, marks that turn the direction of
// writing, and bytes that are not UTF-8 are shown as \n, \t, \xNN or \uNNNN. This is for eyes only; programs read names
// from the JSON forms, which lose nothing.

/// Whether \p unit is one of those marks or a control character.
///
/// Threads: any thread.
[[nodiscard]] bool steersTheTerminal(QChar unit);

/// Threads: any thread.
[[nodiscard]] QByteArray printableName(const QByteArray& bytes);

/// Threads: any thread.
[[nodiscard]] QByteArray printableText(const QString& text);

} // namespace havrel::cli
