// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

namespace havrel {

class BinaryPropertyListBytes;

/// The object at \p start that is no container; nil, and a fault noted in \p bytes, when it is damaged.
///
/// Threads: one thread at a time.
[[nodiscard]] QVariant binaryScalarAt(BinaryPropertyListBytes& bytes, quint64 start);

} // namespace havrel
