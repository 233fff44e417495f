// SPDX-License-Identifier: MIT
#include "components/restic_trees.h"

#include <algorithm>

namespace havrel::restic {

Trees::Trees(const Program& program, const QByteArray& root)
    : m_program(program)
    , m_root(root)
{
}

std::optional<TreeNode> Trees::nodeAt(const QByteArray& path)
{
    TreeNode node{{}, m_root, {}};
    for (const QByteArray& name : path.mid(1).split('/')) {
        if (node.subtree.isEmpty())
            return std::nullopt;
        const QList<TreeNode>& nodes = tree(node.subtree);
        const auto found =
            std::find_if(nodes.begin(), nodes.end(), [&name](const TreeNode& each) { return each.name == name; });
        if (found == nodes.end())
            return std::nullopt;
        node = *found;
    }
    return node;
}

const QList<TreeNode>& Trees::tree(const QByteArray& id)
{
    auto known = m_trees.find(id);
    if (known == m_trees.end())
        known = m_trees.insert(id, treeOf(m_program.outputOf({"cat", "blob", "--", id})).value_or(QList<TreeNode>()));
    return *known;
}

} // namespace havrel::restic
