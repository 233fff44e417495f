// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list_kind.h"

#include <QByteArray>

namespace havrel {

/// How many bytes the format takes for \p number: 1, 2, 4 or 8.
///
/// Threads: any thread.
[[nodiscard]] int bytesFor(quint64 number);

/// Appends the lowest \p width bytes of \p number, the highest first.
///
/// Threads: any thread.
void appendNumber(QByteArray& bytes, quint64 number, int width);

/// Appends the marker of an object that has \p count units, and the count itself when it needs room of its own.
///
/// Threads: any thread.
void appendCount(QByteArray& bytes, int type, qsizetype count);

/// The whole object for a value that is no container; equal scalars of one kind have equal bytes.
///
/// Threads: any thread.
[[nodiscard]] QByteArray encodedBinaryScalar(const QVariant& value, PropertyListKind kind);

} // namespace havrel
