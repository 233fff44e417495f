// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace havrel::cli {

enum class AttributeAccess {
    Read,
    Write,
    Walk, ///< looking through a folder
};

/// What an errno value means for the preferences of the item at \p path: what is wrong and, where there is one, what to
/// do. Looks at the item, so call it at once.
///
/// Threads: any thread.
[[nodiscard]] QString attributeFailureText(int error, const QByteArray& path, AttributeAccess access);

} // namespace havrel::cli
