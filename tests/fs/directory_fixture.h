// SPDX-License-Identifier: MIT
#pragma once

#include "fs/directory.h"
#include "tests/support/temporary_tree.h"

#include <QStringList>

#include <string_view>

namespace havrel::tests {

/// A directory of \p tree; that of the tree itself without a name.
inline std::shared_ptr<JNDirectory> directoryIn(const TemporaryTree& tree, std::string_view name = "")
{
    const QByteArray path = name.empty() ? QByteArray::fromStdString(tree.root()) : tree.bytes(name);
    return JNFileInfo::infoForCPath(path)->asDirectory();
}

/// The names of its entries, in their order.
inline QStringList namesIn(JNDirectory& directory)
{
    QStringList names;
    for (const JNFileInfoPtr& each : directory)
        names << each->name();
    return names;
}

} // namespace havrel::tests
