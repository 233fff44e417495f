// SPDX-License-Identifier: MIT
#include "integrations/thunar_actions_file.h"

#include "foundation/error.h"
#include "integrations/thunar_actions.h"
#include "platform/file_contents.h"
#include "platform/item_removal.h"
#include "platform/items.h"
#include "platform/replaced_file.h"

#include <cerrno>

namespace havrel::integrations {
namespace {

constexpr const char* kNoActions = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n</actions>\n";

void fail(Change& change, const QByteArray& path, const QString& fault)
{
    change.at = path;
    change.fault = fault;
}

QString faultOfDamaged(const QString& reason)
{
    return QStringLiteral("%1; nothing was changed").arg(reason);
}

} // namespace

ThunarActionsFile::ThunarActionsFile(const Places& places)
    : m_path(places.configHome + "/Thunar/uca.xml")
{
    for (const QByteArray& folder : places.configFolders)
        m_others.append(folder + "/Thunar/uca.xml");
}

void ThunarActionsFile::describe(WayState& state) const
{
    const platform::FileContents file = platform::readFile(m_path);
    if (file.error == ENOENT)
        return;
    if (file.error != 0) {
        state.fault = systemErrorText(file.error);
        return;
    }
    const ThunarActionsText without = withoutHavrelActions(file.bytes);
    const qsizetype count = countOfHavrelActions(file.bytes);
    state.fault = without.fault;
    state.ofUser = count == 0 ? Presence::None : count == thunarActions().size() ? Presence::Complete : Presence::Other;
}

QByteArray ThunarActionsFile::actionsForEverybody() const
{
    for (const QByteArray& path : m_others)
        if (const platform::FileContents file = platform::readFile(path); file.error == 0)
            return file.bytes;
    return {};
}

void ThunarActionsFile::replace(const QByteArray& old, const QByteArray& bytes, Change& change) const
{
    const QByteArray backup = m_path + ".before-havrel";
    if (const int error = old.isNull() ? 0 : platform::replaceFile(backup, old, 0600))
        return fail(change, backup, systemErrorText(error));
    if (const int error = platform::replaceFile(m_path, bytes, 0600))
        return fail(change, m_path, systemErrorText(error));
    change.changed.append(m_path);
}

void ThunarActionsFile::add(Change& change) const
{
    const platform::FileContents file = platform::readFile(m_path);
    if (file.error != 0 && file.error != ENOENT)
        return fail(change, m_path, systemErrorText(file.error));
    QByteArray old = file.error == 0 ? file.bytes : actionsForEverybody();
    if (file.error == ENOENT && old.isEmpty())
        old = kNoActions;
    const ThunarActionsText next = withHavrelActions(old);
    if (!next.fault.isNull())
        return fail(change, m_path, faultOfDamaged(next.fault));
    if (file.error == 0 && next.bytes == file.bytes)
        return;
    const QByteArray folder = m_path.left(m_path.lastIndexOf('/'));
    if (const int error = platform::makeFolders(folder, 0700))
        return fail(change, folder, systemErrorText(error));
    replace(file.error == 0 ? file.bytes : QByteArray(), next.bytes, change);
}

void ThunarActionsFile::remove(Change& change) const
{
    const platform::FileContents file = platform::readFile(m_path);
    if (file.error == ENOENT)
        return;
    if (file.error != 0)
        return fail(change, m_path, systemErrorText(file.error));
    const ThunarActionsText next = withoutHavrelActions(file.bytes);
    if (!next.fault.isNull())
        return fail(change, m_path, faultOfDamaged(next.fault));
    if (next.bytes == file.bytes)
        return;
    const QByteArray others = actionsForEverybody();
    if (next.bytes != (others.isEmpty() ? QByteArray(kNoActions) : others))
        return replace(file.bytes, next.bytes, change);
    if (const int error = platform::removeItem(m_path))
        return fail(change, m_path, systemErrorText(error));
    change.changed.append(m_path);
}

} // namespace havrel::integrations
