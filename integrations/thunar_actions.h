// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace havrel::integrations {

/// A custom action of Thunar, known by its unique identifier.
struct ThunarAction
{
    QByteArray id;
    QByteArray xml; ///< an element "action"
};

/// Havrel's commands as custom actions.
///
/// \source thunar-uca-model.c of Thunar 4.18
///
/// Threads: any thread.
[[nodiscard]] const QList<ThunarAction>& thunarActions();

/// A file of actions, changed; or why it was not.
struct ThunarActionsText
{
    QByteArray bytes;
    QString fault; ///< null when there are bytes; names line and reason
};

/// \p file with Havrel's actions: each one that is there is replaced where it stands, those that are missing come last.
/// Everything else keeps its bytes. The same file again when all are there as they should be.
///
/// Refused is what is not well-formed XML in UTF-8 or whose root is not "actions": nothing could be kept of it for
/// sure.
///
/// Threads: any thread.
[[nodiscard]] ThunarActionsText withHavrelActions(const QByteArray& file);

/// \p file without Havrel's actions; everything else keeps its bytes. Refused is the same as above.
///
/// Threads: any thread.
[[nodiscard]] ThunarActionsText withoutHavrelActions(const QByteArray& file);

/// How many of Havrel's actions \p file has; 0 also when it is damaged.
///
/// Threads: any thread.
[[nodiscard]] qsizetype countOfHavrelActions(const QByteArray& file);

} // namespace havrel::integrations
