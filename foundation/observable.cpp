// SPDX-License-Identifier: MIT
#include "foundation/observable.h"

#include "diagnostics/exception.h"
#include "foundation/observation_hub.h"
#include "foundation/property_access.h"

namespace havrel {

Observable::Observable(QObject* parent)
    : QObject(parent)
{
}

Observable::~Observable()
{
    // Once is not enough when a callback asks for another one.
    while (std::unique_ptr<ObservationHub> hub{m_hub.exchange(nullptr)})
        hub.reset();
}

bool Observable::isObservedInHub(KeyPath name) const noexcept
{
    return m_hub.load(std::memory_order_relaxed)->isObserved(name);
}

void Observable::reportChange(KeyPath name, const ObservedChange& change)
{
    if (ObservationHub* hub = m_hub.load(std::memory_order_acquire))
        hub->report(name, change);
}

void Observable::requireIndexes(const IndexSet& indexes, qsizetype objects, qsizetype end, KeyPath name) const
{
    const bool asMany = static_cast<qsizetype>(indexes.count()) == objects;
    const bool within = indexes.isEmpty() || *std::prev(indexes.end()) < static_cast<IndexSet::Index>(end);
    if (!asMany || !within)
        propertyBug(QStringLiteral("indexes do not fit"), *this, name)
            .setDetail(indexes.compactDescription(), QStringLiteral("Indexes"))
            .raise();
}

} // namespace havrel
