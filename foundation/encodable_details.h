// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

namespace havrel {

class Encoder;

/// The details of a failure as \p encoder can take them: whatever cannot be archived (an object of a foreign class, an
/// exception inside itself, what nests too deep) is replaced by its text, so that no detail costs the whole report.
///
/// Threads: one thread at a time.
[[nodiscard]] QVariantMap encodableDetails(const QVariantMap& details, const Encoder& encoder);

} // namespace havrel
