// SPDX-License-Identifier: MIT
#include "components/restic_restore.h"

#include "components/item_names.h"
#include "components/restic_texts.h"
#include "components/restic_trees.h"
#include "foundation/error.h"
#include "platform/extended_attributes.h"
#include "platform/file_names.h"
#include "platform/identity.h"
#include "platform/item_removal.h"
#include "platform/items.h"
#include "platform/loosened_item.h"

#include <cerrno>

namespace havrel::restic {
namespace {

using platform::Proceed;

constexpr qsizetype kLongestPatterns = qsizetype{64} * 1024; // bytes of one call's; the system takes two million

/// As many patterns from \p at on as one call takes; at least one.
QByteArrayList nextPatterns(const QByteArrayList& items, qsizetype& at)
{
    QByteArrayList arguments;
    for (qsizetype length = 0; at < items.size() && (length == 0 || length + items[at].size() < kLongestPatterns);
         ++at) {
        arguments += {"--include", patternOf(items[at])};
        length += arguments.constLast().size();
    }
    return arguments;
}

} // namespace

Restore::Restore(const Program& program, const StoredCapture& capture)
    : m_program(program)
    , m_capture(capture)
{
}

QList<EngineProblem> Restore::run(const QByteArrayList& items, const QByteArray& folder)
{
    const RestoredItems restored(folder);
    QByteArrayList named = items;
    if (named.removeAll("/") > 0)
        addProblem("/", QStringLiteral("it has no name; restore what is in it"));
    const QByteArrayList wanted = itemsWithRoom(withoutCovered(named), restored);
    if (!wanted.isEmpty()) {
        bringBack(wanted, restored);
        tellOfLostAttributes(folder, restored);
    }
    for (const QByteArray& each : wanted)
        if (!m_failed.contains(each))
            place(each, restored);
    return m_problems;
}

/// The engine says nothing about attributes that it could not set.
void Restore::tellOfLostAttributes(const QByteArray& folder, const RestoredItems& restored)
{
    if (platform::writeAttribute(restored.folder(), "user.com.havrel.restored", "1") == ENOTSUP)
        addProblem(folder, QStringLiteral("its file system keeps no attributes: the items come back without theirs"));
}

QByteArrayList Restore::itemsWithRoom(const QByteArrayList& items, const RestoredItems& restored)
{
    QByteArrayList wanted;
    for (const QByteArray& each : items) {
        if (platform::findName(restored.destinationOf(each)) == 0)
            addProblem(each, QStringLiteral("there is an item of that name already"));
        else
            wanted.append(each);
    }
    return wanted;
}

void Restore::bringBack(const QByteArrayList& items, const RestoredItems& restored)
{
    for (qsizetype at = 0; at < items.size();) {
        const QByteArrayList patterns = nextPatterns(items, at);
        const QByteArrayList common{"restore", "--target", restored.folder()};
        const qsizetype before = m_failed.size();
        const Outcome outcome =
            m_program.run({.arguments = common + patterns + QByteArrayList{"--", m_capture.record.id.toLatin1()},
                           .errors = [&](const QByteArray& line) {
                               takeFailure(line, restored);
                               return Proceed::Yes;
                           }});
        if (outcome.status != 0 && m_failed.size() == before)
            m_program.raise(outcome);
    }
}

/// "ignoring error for PATH: REASON", where either may hold ": "; the longest path that is there is meant. What has
/// failed does not stay half there.
void Restore::takeFailure(const QByteArray& line, const RestoredItems& restored)
{
    constexpr QByteArrayView kBeginning("ignoring error for ");
    if (!line.startsWith(kBeginning))
        return;
    const QByteArray told = line.mid(kBeginning.size());
    qsizetype colon = told.lastIndexOf(": ");
    const qsizetype first = told.indexOf(": ");
    while (colon > first && platform::findName(restored.placeOf(told.first(colon))) != 0)
        colon = told.lastIndexOf(": ", colon - 1);
    const QByteArray path = told.first(std::max<qsizetype>(colon, 0));
    if (m_failed.contains(path))
        return;
    m_failed.append(path);
    addProblem(path, platform::textOfFileName(told.mid(colon + 2)));
}

void Restore::place(const QByteArray& item, const RestoredItems& restored)
{
    for (const QByteArray& each : m_failed)
        if (isAtOrBelow(each, item))
            (void)platform::removeItem(restored.placeOf(each));
    mend(item, restored);
    const int error = restored.place(item);
    if (error == ENOENT)
        addProblem(item, QStringLiteral("the capture does not hold it"));
    else if (error == EEXIST)
        addProblem(item, QStringLiteral("there is an item of that name already"));
    else if (error != 0)
        addProblem(item, systemErrorText(error));
}

void Restore::mend(const QByteArray& item, const RestoredItems& restored)
{
    const QByteArrayList readOnly = restored.digHolesAndFindReadOnly(item);
    restored.retargetLinks(item, m_capture.links);
    if (platform::identity().effectiveUser() != 0)
        giveAttributes(readOnly, restored);
}

/// The engine sets the mode first and the attributes then, which a read-only item takes from nobody but root, and says
/// nothing about it.
void Restore::giveAttributes(const QByteArrayList& readOnly, const RestoredItems& restored)
{
    Trees trees(m_program, m_capture.tree);
    for (const QByteArray& path : readOnly) {
        const std::optional<TreeNode> node = trees.nodeAt(path);
        const QByteArray place = restored.placeOf(path);
        if (!node || node->attributes.isEmpty())
            continue;
        const platform::LoosenedItem item(place);
        for (const auto& [name, value] : node->attributes)
            if (const int error = platform::writeAttribute(place, name.constData(), value);
                error != 0 && name.startsWith("user."))
                addProblem(path,
                           QStringLiteral("attribute %1: %2").arg(QString::fromUtf8(name), systemErrorText(error)));
    }
}

void Restore::addProblem(const QByteArray& item, const QString& reason)
{
    m_problems.append({platform::textOfFileName(item), reason});
}

} // namespace havrel::restic
