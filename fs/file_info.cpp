// SPDX-License-Identifier: MIT
#include "fs/file_info.h"

#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "fs/directory.h"
#include "fs/nonexistent_file.h"
#include "fs/path.h"
#include "fs/sub_path.h"
#include "fs/volume_info.h"
#include "platform/items.h"

#include <cerrno>
#include <utility>

namespace havrel {
namespace {

/// The kind of the item; none when there is no item.
std::optional<ItemType> probe(const JNPath& path)
{
    ItemType type = ItemType::None;
    const int error = platform::probeType(path.cPath(), type);
    if (error == ENOENT || error == ENOTDIR)
        return std::nullopt;
    if (error != 0)
        HVException::ioErrno(error, QStringLiteral("failed to probe object vtype")).setPathObject(path).raise();
    return type;
}

} // namespace

JNFileInfo::JNFileInfo(Token /*token*/, ItemType type, std::shared_ptr<JNPath> pathObject)
    : m_pathObj(std::move(pathObject))
    , m_vtype(type)
{
}

JNFileInfo::~JNFileInfo() = default;

JNFileInfoPtr JNFileInfo::infoForPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    const auto type = probe(*pathObject);
    return type ? withType(*type, pathObject) : JNNonexistentFile::withPathObject(pathObject);
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

JNFileInfoPtr JNFileInfo::withType(ItemType type, const std::shared_ptr<JNPath>& pathObject)
{
    switch (type) {
    case ItemType::None:
    case ItemType::Bad:
        return nullptr;
    case ItemType::Directory:
        return JNDirectory::withPathObject(pathObject);
    default:
        return std::make_shared<JNFileInfo>(Token(), type, pathObject);
    }
}

QByteArray JNFileInfo::cName() const
{
    return m_pathObj->cName();
}

QByteArray JNFileInfo::cPath() const
{
    return m_pathObj->cPath();
}

QString JNFileInfo::name() const
{
    return m_pathObj->name();
}

QString JNFileInfo::displayName() const
{
    return m_pathObj->displayName();
}

QString JNFileInfo::path() const
{
    return m_pathObj->path();
}

QUrl JNFileInfo::url() const
{
    return m_pathObj->url();
}

QString JNFileInfo::extension() const
{
    return m_pathObj->extension();
}

std::shared_ptr<JNVolumeInfo> JNFileInfo::volumeInfo()
{
    return m_pathObj->volumeInfo();
}

bool JNFileInfo::isPersistentObject() const noexcept
{
    return isRegularFile() || isDirectory() || isSymbolicLink();
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
    const auto found = probe(*m_pathObj);
    if (found.has_value() == exists() && found.value_or(ItemType::None) == m_vtype)
        return shared_from_this();
    return found ? withType(*found, m_pathObj) : JNNonexistentFile::withPathObject(m_pathObj);
}

std::shared_ptr<JNDirectory> JNFileInfo::livingParent() const
{
    const auto subPath = std::dynamic_pointer_cast<JNSubPath>(m_pathObj);
    return subPath ? subPath->parentPath()->directoryInfo() : nullptr;
}

std::optional<std::uint64_t> JNFileInfo::volumeIdentifier() const
{
    const auto device = platform::deviceId(cPath());
    if (!device) {
        const int error = platform::findName(cPath());
        auto problem = HVException::error(
            Error::posix(error), exception_name::kIO, QStringLiteral("problem obtaining volumeIdentifier attribute"));
        Logr::logException(LogClassification::Debug, nullptr, problem.setFileInfo(*this));
    }
    return device;
}

bool JNFileInfo::isEqual(const JNFileInfo& other) const
{
    return m_pathObj->isEqual(*other.m_pathObj);
}

QString JNFileInfo::description() const
{
    return path();
}

} // namespace havrel
