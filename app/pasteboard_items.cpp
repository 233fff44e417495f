// SPDX-License-Identifier: MIT
#include "app/pasteboard_items.h"

#include "diagnostics/logr.h"
#include "fs/item_path.h"
#include "fs/path_text.h"
#include "platform/items.h"

namespace havrel {
namespace {

/// The lines of \p text that are not empty, without their ends.
QByteArrayList linesOf(const QByteArray& text)
{
    QByteArrayList lines = text.split('\n');
    for (QByteArray& line : lines)
        if (line.endsWith('\r'))
            line.chop(1);
    lines.removeAll(QByteArray());
    return lines;
}

QUrl urlOf(const QByteArray& path)
{
    return path_text::toURL(withoutTrailingSlashes(path));
}

ItemPath itemOf(const QByteArray& uri)
{
    return isFileURI(uri) ? pathOfFileURI(uri) : ItemPath{{}, QStringLiteral("this URI names no file")};
}

} // namespace

std::optional<QList<QUrl>> fileURLsOnPasteboard(const Pasteboard& pasteboard)
{
    const auto list = pasteboard.constFind(pasteboard::kUriList);
    if (list == pasteboard.cend())
        return std::nullopt;
    QList<QUrl> urls;
    QString fault;
    for (const QByteArray& line : linesOf(*list)) {
        if (line.startsWith('#'))
            continue;
        const ItemPath item = itemOf(line);
        if (item.fault.isNull())
            urls.append(urlOf(item.path));
        else
            fault = item.fault;
    }
    if (!fault.isNull())
        Logr::debugMessage(QStringLiteral("left out of the pasteboard: %1").arg(fault));
    return urls;
}

QList<QUrl> reachableURLsOnPasteboard(const Pasteboard& pasteboard)
{
    QList<QUrl> urls;
    for (const QByteArray& path : linesOf(pasteboard.value(pasteboard::kPlainText)))
        if (path.startsWith('/') && platform::findName(withoutTrailingSlashes(path)) == 0)
            urls.append(urlOf(path));
    return urls;
}

} // namespace havrel
