// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "fs/directory.h"
#include "platform/folder_entries.h"
#include "platform/items.h"
#include "platform/owned_descriptor.h"

#include <array>
#include <cerrno>
#include <utility>

namespace havrel {
namespace {

constexpr std::size_t kBufferSize = 16384; // bytes

/// The one lock and the one buffer of all readings of folders in the process.
struct Reading
{
    Mutex lock;
    alignas(std::uint64_t) std::array<char, kBufferSize> buffer HAVREL_GUARDED_BY(lock);
    std::vector<platform::FolderEntry> entries HAVREL_GUARDED_BY(lock);
};

Reading& reading()
{
    static Reading* const s_reading = std::make_unique<Reading>().release(); // outlives every folder
    return *s_reading;
}

/// Calls \p visit for each entry of the folder; the entries are valid during the call. \return 0 or an errno value.
template<class Visit>
int visitEntries(Reading& shared, int folder, Visit visit) HAVREL_REQUIRES(shared.lock)
{
    for (;;) {
        auto read = platform::readEntries(folder, shared.buffer, shared.entries);
        if (read.error == ERANGE)
            read = platform::readEntries(folder, shared.buffer, shared.entries);
        if (read.error != 0 || read.ended)
            return read.error;
        for (const platform::FolderEntry& each : shared.entries)
            visit(each);
    }
}

/// The information of an entry; null when it has gone, or is of no type.
JNFileInfoPtr informationOf(const platform::FolderEntry& entry, int folder, const JNPathPtr& parent, EntryDetail detail)
{
    JNFileInfo::Entry known{.type = platform::typeOfEntry(entry.kind), .name = entry.name};
    platform::ItemStatus status;
    if (detail == EntryDetail::Attributes || known.type == ItemType::None) {
        const int error = platform::readStatus(folder, entry.name, status);
        if (error == ENOENT)
            return nullptr;
        if (error == 0) { // else a folder that may be listed but not searched: the listing is all there is
            known.type = status.type;
            known.status = &status;
        }
    }
    return JNFileInfo::withBatchAttr(known, parent);
}

void raiseReadFailure(int error, const JNPath& path)
{
    HVException::errnoWithName(error, exception_name::kIO, QStringLiteral("failed to read directory"))
        .setPathObject(path)
        .setAPI(QStringLiteral("getattrlistbulk"))
        .raise();
}

} // namespace

bool JNDirectory::isRead() const
{
    const MutexLock lock(m_listLock);
    return m_isRead;
}

void JNDirectory::lazyDirectoryRead(EntryDetail detail)
{
    if (isRead())
        return;
    Reading& shared = reading();
    const MutexLock readLock(shared.lock);
    if (isRead())
        return;
    const JNPathPtr path = pathObject(); // by now: who gives it another one flushes what was read after that
    const platform::OwnedDescriptor folder = platform::openFolder(path->cPath());
    if (!folder.isOpen())
        return;
    EntryList list;
    const int error = visitEntries(shared, folder.get(), [&](const platform::FolderEntry& each) {
        if (auto entry = informationOf(each, folder.get(), path, detail))
            list.append(std::move(entry));
    });
    if (error != 0)
        raiseReadFailure(error, *path);
    const MutexLock lock(m_listLock);
    m_list = std::move(list);
    ++m_generation;
    m_isRead = true;
}

void JNDirectory::flushDirectoryContents()
{
    EntryList dropped;
    const MutexLock readLock(reading().lock);
    const MutexLock lock(m_listLock);
    if (!m_isRead)
        return;
    std::swap(m_list, dropped);
    ++m_generation;
    m_isRead = false;
    m_isSorted = false;
}

void JNDirectory::flushAttributes()
{
    JNFileInfo::flushAttributes();
    const MutexLock lock(m_listLock);
    m_countedNames.reset();
}

std::uint32_t JNDirectory::count()
{
    {
        const MutexLock lock(m_listLock);
        if (m_isRead || m_countedNames)
            return m_isRead ? m_list.count() : *m_countedNames;
    }
    Reading& shared = reading();
    const MutexLock readLock(shared.lock);
    const platform::OwnedDescriptor folder = platform::openFolder(cPath());
    if (!folder.isOpen())
        return 0;
    std::uint32_t names = 0;
    if (const int error = visitEntries(shared, folder.get(), [&names](const auto& /*each*/) { ++names; }); error != 0)
        raiseReadFailure(error, *pathObject());
    const MutexLock lock(m_listLock);
    m_countedNames = names;
    return names;
}

JNFileInfoPtr JNDirectory::firstObject()
{
    lazyDirectoryRead();
    const MutexLock lock(m_listLock);
    return m_list.first();
}

} // namespace havrel
