// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace havrel::integrations {

/// Where the actions stand in a file of Thunar's actions. Offsets count the UTF-16 units of the text.
///
/// Threads: any thread.
struct ThunarActionsLayout
{
    struct Action
    {
        QString id; ///< empty when it has none
        qsizetype from = 0;
        qsizetype to = 0; ///< behind its end tag
    };

    QByteArray byteOrderMark; ///< before the text; usually empty
    QString text;
    QList<Action> actions;       ///< in the order of the text
    qsizetype endOfContents = 0; ///< before the root's end tag, or before the "/>" of a root without contents
    QString fault;               ///< null when the text was read

    [[nodiscard]] bool isRootEmptyElement() const { return text.mid(endOfContents, 2) == QLatin1String("/>"); }
};

/// Reads \p file, which must be well-formed XML in UTF-8 with the root "actions".
///
/// Threads: any thread.
[[nodiscard]] ThunarActionsLayout layoutOfThunarActions(const QByteArray& file);

} // namespace havrel::integrations
