// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QVariant>

#include <optional>

namespace havrel {

/// \p bytes of a name, a path or a place, for a property list that people read: a string where XML can hold them as
/// text, else data.
///
/// Threads: any thread.
[[nodiscard]] QVariant storedBytes(const QByteArray& bytes);

/// The bytes that storedBytes() has stored; none for any other value.
///
/// Threads: any thread.
[[nodiscard]] std::optional<QByteArray> bytesOfStored(const QVariant& stored);

} // namespace havrel
