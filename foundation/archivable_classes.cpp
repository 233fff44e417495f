// SPDX-License-Identifier: MIT
#include "foundation/archivable_classes.h"

#include "foundation/thread_annotations.h"

#include <algorithm>
#include <vector>

namespace havrel {
namespace {

using Row = std::shared_ptr<const ArchivableClass>;

class Table
{
public:
    Table()
    {
        for (const ArchivableClass& row : {errorArchivableClass(),
                                           indexSetArchivableClass(),
                                           plainExceptionArchivableClass(),
                                           exceptionArchivableClass(),
                                           logLineIdentArchivableClass(),
                                           logLinePinArchivableClass()})
            add(row);
    }

    void add(const ArchivableClass& archivable)
    {
        const MutexLock lock(m_mutex);
        const auto sameName = [&](const Row& row) { return row->name == archivable.name; };
        const auto old = std::find_if(m_rows.begin(), m_rows.end(), sameName);
        const auto row = std::make_shared<const ArchivableClass>(archivable);
        if (old == m_rows.end())
            m_rows.push_back(row);
        else
            *old = row;
    }

    template<class Predicate>
    Row find(Predicate predicate) const
    {
        for (const Row& row : rows()) {
            if (predicate(*row))
                return row;
        }
        return nullptr;
    }

private:
    /// A copy: predicates are code of the classes and run without the lock.
    std::vector<Row> rows() const
    {
        const MutexLock lock(m_mutex);
        return m_rows;
    }

    mutable Mutex m_mutex;
    std::vector<Row> m_rows HAVREL_GUARDED_BY(m_mutex);
};

Table& table()
{
    static Table theTable;
    return theTable;
}

} // namespace

void registerArchivableClass(const ArchivableClass& archivable)
{
    table().add(archivable);
}

Row archivableClassNamed(const QString& name)
{
    return table().find([&](const ArchivableClass& row) { return row.name == name; });
}

Row archivableClassOf(const QVariant& object)
{
    return table().find([&](const ArchivableClass& row) { return row.isInstance(object); });
}

} // namespace havrel
