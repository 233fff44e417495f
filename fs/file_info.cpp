// SPDX-License-Identifier: MIT
#include "fs/file_info.h"

#include "diagnostics/exception.h"
#include "fs/directory.h"
#include "fs/nonexistent_file.h"
#include "fs/path.h"
#include "fs/pending_release.h"
#include "fs/sub_path.h"
#include "fs/symbolic_link.h"
#include "platform/folder_entries.h"
#include "platform/item_types.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace havrel {
namespace {

/// The kind of the item; none when there is no item.
std::optional<ItemType> probe(int descriptor, const JNPath& path)
{
    ItemType type = ItemType::None;
    const int error = descriptor >= 0 ? platform::probeType(descriptor, type) : platform::probeType(path.cPath(), type);
    if (error == ENOENT || error == ENOTDIR)
        return std::nullopt;
    if (error != 0)
        HVException::ioErrno(error, QStringLiteral("failed to probe object vtype")).setPathObject(path).raise();
    return type;
}

std::unique_ptr<char[]> copyOf(const char* name) // NOLINT(modernize-avoid-c-arrays)
{
    const std::size_t size = std::strlen(name) + 1;
    auto copy = std::make_unique_for_overwrite<char[]>(size); // NOLINT(modernize-avoid-c-arrays)
    std::memcpy(copy.get(), name, size);
    return copy;
}

} // namespace

JNFileInfo::JNFileInfo(Token /*token*/, ItemType type, std::shared_ptr<JNPath> pathObject)
    : m_pathObj(std::move(pathObject))
    , m_vtype(type)
{
}

JNFileInfo::JNFileInfo(Token /*token*/, const Entry& entry, std::shared_ptr<JNPath> parentPath)
    : m_pathObj(std::move(parentPath))
    , m_entryName(copyOf(entry.name))
    , m_vtype(entry.type)
{
    if (entry.status != nullptr) {
        m_attrs = *entry.status;
        m_flags = HasAttributes;
    }
}

JNFileInfo::~JNFileInfo()
{
    if (m_next)
        releaseLater(std::move(m_next));
}

JNFileInfoPtr JNFileInfo::infoForPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    return infoForFile(-1, pathObject, nullptr);
}

JNFileInfoPtr JNFileInfo::infoForCPath(const QByteArray& path)
{
    return infoForPathObject(JNPath::withCPath(path));
}

JNFileInfoPtr JNFileInfo::infoForPath(const QString& path)
{
    return infoForPathObject(JNPath::withPath(path));
}

JNFileInfoPtr JNFileInfo::infoForURL(const QUrl& url)
{
    const JNPathPtr path = JNPath::withURL(url);
    return path ? infoForPathObject(path) : nullptr;
}

JNFileInfoPtr
JNFileInfo::infoForFile(int descriptor, const std::shared_ptr<JNPath>& pathObject, const JNFileInfoPtr& existing)
{
    const auto found = probe(descriptor, *pathObject);
    if (existing && found.has_value() == existing->exists() && found.value_or(ItemType::None) == existing->type())
        return existing;
    return found ? withType(*found, pathObject) : JNNonexistentFile::withPathObject(pathObject);
}

JNFileInfoPtr JNFileInfo::withType(ItemType type, const std::shared_ptr<JNPath>& pathObject)
{
    switch (type) {
    case ItemType::None:
    case ItemType::Bad:
        return nullptr;
    case ItemType::RegularFile:
        return std::make_shared<JNRegularFile>(Token(), type, pathObject);
    case ItemType::Directory:
        return JNDirectory::withPathObject(pathObject);
    case ItemType::SymbolicLink:
        return std::make_shared<JNSymbolicLink>(Token(), type, pathObject);
    default:
        return std::make_shared<JNFileInfo>(Token(), type, pathObject);
    }
}

JNFileInfoPtr JNFileInfo::withDirEntry(const char* name, std::uint8_t kind, const std::shared_ptr<JNPath>& parentPath)
{
    return withBatchAttr({.type = platform::typeOfEntry(kind), .name = name}, parentPath);
}

JNFileInfoPtr JNFileInfo::withBatchAttr(const Entry& entry, const std::shared_ptr<JNPath>& parentPath)
{
    switch (entry.type) {
    case ItemType::None:
    case ItemType::Bad:
        return nullptr;
    case ItemType::RegularFile:
        return std::make_shared<JNRegularFile>(Token(), entry, parentPath);
    case ItemType::Directory:
        return JNDirectory::withBatchAttr(entry, parentPath);
    case ItemType::SymbolicLink:
        return std::make_shared<JNSymbolicLink>(Token(), entry, parentPath);
    default:
        return std::make_shared<JNFileInfo>(Token(), entry, parentPath);
    }
}

bool JNFileInfo::isPersistentObject() const noexcept
{
    return isRegularFile() || isDirectory() || isSymbolicLink();
}

std::shared_ptr<JNRegularFile> JNFileInfo::asRegularFile()
{
    return nullptr;
}

std::shared_ptr<JNSymbolicLink> JNFileInfo::asSymbolicLink()
{
    return nullptr;
}

std::shared_ptr<JNDirectory> JNFileInfo::asDirectory()
{
    return nullptr;
}

bool JNFileInfo::exists() const noexcept
{
    return true;
}

JNFileInfoPtr JNFileInfo::reevaluateType()
{
    return infoForFile(-1, pathObject(), shared_from_this());
}

JNFileInfoPtr JNFileInfo::hardened()
{
    const JNPathPtr path = pathObject();
    const JNPathPtr hard = path->hardenedReal();
    return hard == path ? shared_from_this() : infoForPathObject(hard);
}

bool JNFileInfo::isEqual(const JNFileInfo& other) const
{
    return this == &other || cPath() == other.cPath();
}

std::shared_ptr<JNDirectory> JNFileInfo::livingParent() const
{
    JNPathPtr parent;
    {
        const MutexLock lock(m_attrLock);
        if (m_entryName)
            parent = m_pathObj;
        else if (const auto subPath = std::dynamic_pointer_cast<JNSubPath>(m_pathObj))
            parent = subPath->parentPath();
    }
    return parent ? parent->directoryInfo() : nullptr;
}

std::shared_ptr<JNDirectory> JNFileInfo::parentDirectoryInfo() const
{
    if (auto parent = livingParent())
        return parent;
    const JNPathPtr path = pathObject();
    const JNPathPtr parent = path->parent();
    return parent->isEqual(*path) ? nullptr : parent->directory(); // "/" and "." are their own
}

JNFileInfoPtr JNFileInfo::nextObj() const
{
    const MutexLock lock(m_attrLock);
    return m_next;
}

void JNFileInfo::setNext(JNFileInfoPtr next)
{
    const MutexLock lock(m_attrLock);
    m_next.swap(next);
}

} // namespace havrel
