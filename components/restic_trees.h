// SPDX-License-Identifier: MIT
#pragma once

#include "components/restic_messages.h"
#include "components/restic_program.h"

namespace havrel::restic {

/// What is stored about single items of a capture, beyond what listings tell. Each folder on the way costs a call of
/// the program, once.
///
/// Threads: one thread at a time.
class Trees
{
public:
    Trees(const Program& program, const QByteArray& root);

    /// What is stored about the item at the absolute \p path; none when the capture does not hold it.
    [[nodiscard]] std::optional<TreeNode> nodeAt(const QByteArray& path);

private:
    [[nodiscard]] const QList<TreeNode>& tree(const QByteArray& id);

    const Program& m_program;
    QByteArray m_root;
    QHash<QByteArray, QList<TreeNode>> m_trees;
};

} // namespace havrel::restic
