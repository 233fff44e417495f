// SPDX-License-Identifier: MIT
#include "fs/directory.h"

#include "fs/path.h"
#include "fs/volume_info.h"
#include "platform/items.h"

#include <utility>

namespace havrel {

JNDirectory::JNDirectory(Token token, std::shared_ptr<JNPath> pathObject)
    : JNFileInfo(token, ItemType::Directory, std::move(pathObject))
{
}

std::shared_ptr<JNDirectory> JNDirectory::withPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    const JNPathPtr own = pathObject->directoryInfo() ? pathObject->copy() : pathObject;
    auto directory = std::make_shared<JNDirectory>(Token(), own);
    own->setDirectoryInfo(directory);
    return directory;
}

std::shared_ptr<JNDirectory> JNDirectory::directoryWithPath(const QString& path)
{
    const JNFileInfoPtr info = infoForPath(path);
    return info ? info->asDirectory() : nullptr;
}

std::shared_ptr<JNDirectory> JNDirectory::asDirectory()
{
    return std::static_pointer_cast<JNDirectory>(shared_from_this());
}

bool JNDirectory::isMountPoint() const
{
    return platform::isMountPoint(cPath());
}

std::shared_ptr<JNVolumeInfo> JNDirectory::volumeInfo()
{
    const MutexLock lock(m_volumeLock);
    if (auto owner = m_circularVolInfo.lock())
        return owner;
    if (!m_volumeInfo)
        m_volumeInfo = findVolume();
    return m_volumeInfo;
}

void JNDirectory::setVolumeInfo(const std::shared_ptr<JNVolumeInfo>& volumeInfo)
{
    const MutexLock lock(m_volumeLock);
    m_circularVolInfo = volumeInfo;
    m_volumeInfo.reset();
}

std::shared_ptr<JNVolumeInfo> JNDirectory::findVolume() const
{
    const auto parent = livingParent();
    return parent && !isMountPoint() ? parent->volumeInfo() : JNVolumeInfo::withPath(cPath());
}

} // namespace havrel
