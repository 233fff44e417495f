// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list_kind.h"

#include <QVarLengthArray>

namespace havrel {

/// Bytes in the making; those of a usual list never touch the heap.
using BinaryBytes = QVarLengthArray<char, 512>;

/// How many bytes the format takes for \p number: 1, 2, 4 or 8.
///
/// Threads: any thread.
[[nodiscard]] int bytesFor(quint64 number);

/// Puts the lowest \p width bytes of \p number, the highest first, to \p at.
/// \return where the next byte belongs.
///
/// Threads: any thread.
[[nodiscard]] char* putNumber(char* at, quint64 number, int width);

/// Appends the marker of an object that has \p count units, and the count itself when it needs room of its own.
///
/// Threads: any thread.
void appendCount(BinaryBytes& bytes, int type, qsizetype count);

/// Appends the whole object for a value that is no container; equal scalars of one kind have equal bytes.
///
/// Threads: any thread.
void appendBinaryScalar(BinaryBytes& bytes, const QVariant& value, PropertyListKind kind);
void appendBinaryString(BinaryBytes& bytes, const QString& text);

} // namespace havrel
