// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace havrel {

/// A set of unsigned indexes in ascending order.
///
/// Threads: const members any thread, others one at a time.
class IndexSet
{
public:
    using Index = std::uint64_t;
    using const_iterator = std::vector<Index>::const_iterator;

    /// Indexes without gaps: location, location + 1, ... location + length - 1.
    struct Range
    {
        Index location = 0;
        Index length = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };

    IndexSet() = default;
    IndexSet(std::initializer_list<Index> indexes);

    void addIndex(Index index);
    void removeIndex(Index index);
    [[nodiscard]] bool containsIndex(Index index) const;
    [[nodiscard]] std::size_t count() const noexcept { return m_indexes.size(); }
    [[nodiscard]] bool isEmpty() const noexcept { return m_indexes.empty(); }
    [[nodiscard]] const_iterator begin() const noexcept { return m_indexes.begin(); }
    [[nodiscard]] const_iterator end() const noexcept { return m_indexes.end(); }

    /// The runs of consecutive indexes, ascending.
    [[nodiscard]] std::vector<Range> ranges() const;

    /// "{ 0-2, 5 }": the runs, first and last joined by "-"; "{ }" for the empty set.
    ///
    /// \selector compactDescription
    [[nodiscard]] QString compactDescription() const;

    friend bool operator==(const IndexSet&, const IndexSet&) = default;

private:
    std::vector<Index> m_indexes; // ascending, without repeats
};

/// Equal sets hash alike.
[[nodiscard]] std::size_t qHash(const IndexSet& set, std::size_t seed = 0) noexcept;

} // namespace havrel

Q_DECLARE_METATYPE(havrel::IndexSet)
