// SPDX-License-Identifier: MIT
#include "components/item_names.h"

#include "fs/path_text.h"

#include <QSet>

namespace havrel {
namespace {

bool hasAncestorIn(const QSet<QByteArray>& items, const QByteArray& path)
{
    for (qsizetype slash = path.lastIndexOf('/'); slash >= 0; slash = slash > 0 ? path.lastIndexOf('/', slash - 1) : -1)
        if (const QByteArray above = path.first(slash); path != "/" && items.contains(slash == 0 ? "/" : above))
            return true;
    return false;
}

} // namespace

QByteArray plainPath(const QByteArray& path, const QByteArray& workingFolder)
{
    return path_text::standardised(path.startsWith('/') ? path : path_text::joined(workingFolder, path));
}

bool isAtOrBelow(const QByteArray& path, const QByteArray& item)
{
    if (item == "/")
        return true;
    return path.startsWith(item) && (path.size() == item.size() || path[item.size()] == '/');
}

QByteArrayList withoutCovered(const QByteArrayList& items)
{
    const QSet<QByteArray> all(items.begin(), items.end());
    QSet<QByteArray> seen;
    QByteArrayList kept;
    for (const QByteArray& each : items) {
        if (seen.contains(each) || hasAncestorIn(all, each))
            continue;
        seen.insert(each);
        kept.append(each);
    }
    return kept;
}

} // namespace havrel
