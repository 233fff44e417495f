// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/description.h"
#include "foundation/observer.h"

#include <QStringList>

namespace havrel {

/// What blocks were told, one line a call: "<label>old->new", lists in parentheses, the indexes after " at ".
/// Made before what is observed: objects that die at the end of a test still tell.
class ObservationJournal
{
public:
    [[nodiscard]] SettingBlock block(const QString& label = {})
    {
        return [this, label](QObject*, QObject*, const QVariant& before, const QVariant& now) {
            write(label + change(before, now));
        };
    }
    [[nodiscard]] InsertionBlock insertionBlock()
    {
        return [this](QObject*, QObject*, const QVariant& added, const IndexSet& indexes) {
            write(QStringLiteral("insert ") + descriptionOf(added) + at(indexes));
        };
    }
    [[nodiscard]] RemovalBlock removalBlock()
    {
        return [this](QObject*, QObject*, const QVariant& removed, const IndexSet& indexes) {
            write(QStringLiteral("remove ") + descriptionOf(removed) + at(indexes));
        };
    }
    [[nodiscard]] ReplacementBlock replacementBlock()
    {
        return [this](QObject*, QObject*, const QVariant& old, const QVariant& now, const IndexSet& indexes) {
            write(QStringLiteral("replace ") + change(old, now) + at(indexes));
        };
    }

    void write(const QString& line) { m_lines.push_back(line); }
    /// The lines since the last call, joined by "; ".
    [[nodiscard]] std::string read() { return std::exchange(m_lines, {}).join(QStringLiteral("; ")).toStdString(); }

private:
    static QString text(const QVariant& value)
    {
        return value.canConvert<QVariantList>() && value.typeId() != QMetaType::QString ? descriptionOf(value.toList())
                                                                                        : descriptionOf(value);
    }
    static QString change(const QVariant& before, const QVariant& now)
    {
        return text(before) + QStringLiteral("->") + text(now);
    }
    static QString at(const IndexSet& indexes) { return QStringLiteral(" at ") + indexes.compactDescription(); }

    QStringList m_lines;
};

} // namespace havrel
