// SPDX-License-Identifier: MIT
#include "foundation/index_set.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

namespace havrel {
namespace {

const bool kTextRegistered =
    QMetaType::registerConverter<IndexSet, QString>([](const IndexSet& set) { return set.compactDescription(); });

} // namespace

IndexSet::IndexSet(std::initializer_list<Index> indexes)
{
    for (const Index index : indexes)
        addIndex(index);
}

void IndexSet::addIndex(Index index)
{
    if (m_indexes.empty() || m_indexes.back() < index) {
        m_indexes.push_back(index);
        return;
    }
    const auto place = std::lower_bound(m_indexes.begin(), m_indexes.end(), index);
    if (*place != index)
        m_indexes.insert(place, index);
}

void IndexSet::removeIndex(Index index)
{
    const auto place = std::lower_bound(m_indexes.begin(), m_indexes.end(), index);
    if (place != m_indexes.end() && *place == index)
        m_indexes.erase(place);
}

bool IndexSet::containsIndex(Index index) const
{
    return std::binary_search(m_indexes.begin(), m_indexes.end(), index);
}

std::vector<IndexSet::Range> IndexSet::ranges() const
{
    std::vector<Range> runs;
    for (const Index index : m_indexes) {
        if (!runs.empty() && runs.back().location + runs.back().length == index)
            ++runs.back().length;
        else
            runs.push_back({index, 1});
    }
    return runs;
}

QString IndexSet::compactDescription() const
{
    QStringList runs;
    for (const Range& run : ranges()) {
        const QString first = QString::number(run.location);
        runs << (run.length == 1 ? first : first + u'-' + QString::number(run.location + run.length - 1));
    }
    return runs.isEmpty() ? QStringLiteral("{ }") : QStringLiteral("{ %1 }").arg(runs.join(QStringLiteral(", ")));
}

std::size_t qHash(const IndexSet& set, std::size_t seed) noexcept
{
    return qHashRange(set.begin(), set.end(), seed);
}

} // namespace havrel
