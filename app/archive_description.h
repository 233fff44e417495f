// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QVariantMap>

#include <optional>

namespace havrel {

/// What the monitor tells of an archive.
///
/// Threads: any thread.
namespace archive_description {

/// The bytes of its path: empty when the description has none, or one that no file can have.
[[nodiscard]] QByteArray pathOf(const QVariantMap& description);
/// When something was last captured to it; none when the monitor does not tell.
[[nodiscard]] std::optional<QDateTime> lastCaptureTimeOf(const QVariantMap& description);

} // namespace archive_description
} // namespace havrel
