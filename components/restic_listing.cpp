// SPDX-License-Identifier: MIT
#include "components/restic_listing.h"

#include "components/engine_fault.h"
#include "components/restic_messages.h"

#include <algorithm>

namespace havrel::restic {
namespace {

using platform::Proceed;

constexpr const char* kReplacement = "\xEF\xBF\xBD"; // U+FFFD

QByteArrayList argumentsOf(const Listing& listing, const char* form)
{
    return QByteArrayList{"ls", form, "--", listing.capture.toLatin1()} + listing.folders;
}

QList<CapturedItem> itemsFromJson(const Program& program, const Listing& listing)
{
    QList<CapturedItem> items;
    program.runWell({.arguments = argumentsOf(listing, "--json"), .output = [&items](const QByteArray& line) {
                         if (const std::optional<CapturedItem> item = itemOf(line))
                             items.append(*item);
                         return Proceed::Yes;
                     }});
    return items;
}

QByteArrayList linesOfNames(const Program& program, const Listing& listing)
{
    QByteArrayList lines;
    program.runWell({.arguments = argumentsOf(listing, "--quiet"), .output = [&lines](const QByteArray& line) {
                         lines.append(line);
                         return Proceed::Yes;
                     }});
    return lines;
}

/// Gives the items the bytes of their paths. Answers whether the lines were those of the items.
bool takePaths(QList<CapturedItem>& items, const QByteArrayList& lines)
{
    qsizetype at = 0;
    for (CapturedItem& each : items) {
        const qsizetype count = each.path.count('\n') + 1;
        if (at + count > lines.size())
            return false;
        each.path = lines.mid(at, count).join('\n');
        at += count;
    }
    return at == lines.size();
}

} // namespace

void listItems(const Program& program, const Listing& listing, const CapturedItemBlock& block)
{
    QList<CapturedItem> items = itemsFromJson(program, listing);
    const bool mayHaveLost = std::any_of(
        items.begin(), items.end(), [](const CapturedItem& each) { return each.path.contains(kReplacement); });
    if (mayHaveLost && !takePaths(items, linesOfNames(program, listing)))
        raiseFault(EngineFault::Other, {"two lists of the same items differ"}, program.place());
    for (const CapturedItem& each : items)
        block(each);
}

} // namespace havrel::restic
