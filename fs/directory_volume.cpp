// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "fs/directory.h"
#include "fs/item_resources.h"
#include "fs/volume_info.h"

namespace havrel {

bool JNDirectory::isMountPoint() const
{
    return attrs().isMountRoot;
}

bool JNDirectory::isPackage() const
{
    return itemResources(*pathObject()).isPackage;
}

QString JNDirectory::logTypeDescription() const
{
    try {
        return isMountPoint() ? QStringLiteral("volume") : QStringLiteral("folder");
    } catch (const HVException&) { // what is to be logged may be that very failure
        return QStringLiteral("folder");
    }
}

std::shared_ptr<JNVolumeInfo> JNDirectory::volumeInfo()
{
    return volume();
}

std::shared_ptr<JNVolumeInfo> JNDirectory::volume() const
{
    const MutexLock lock(m_volumeLock);
    if (auto owner = m_circularVolInfo.lock())
        return owner;
    if (m_volumeInfo)
        return m_volumeInfo;
    if (const auto parent = livingParent(); parent && !isMountPoint()) {
        auto ofParent = parent->volumeInfo();
        m_circularVolInfo = ofParent; // it may own the parent, whose entry this is
        return ofParent;
    }
    m_volumeInfo = JNVolumeInfo::withPath(cPath());
    return m_volumeInfo;
}

void JNDirectory::setVolumeInfo(const std::shared_ptr<JNVolumeInfo>& volumeInfo)
{
    std::shared_ptr<JNVolumeInfo> dropped; // may own this object: its end must not come under the lock
    const MutexLock lock(m_volumeLock);
    m_circularVolInfo = volumeInfo;
    m_volumeInfo.swap(dropped);
}

QString JNDirectory::displayName() const
{
    if (!isMountPoint())
        return JNFileInfo::displayName();
    return volume()->displayName();
}

QString JNDirectory::displayPath() const
{
    if (isMountPoint())
        return volume()->displayPath() + u'/';
    return JNFileInfo::displayPath() + u'/';
}

std::shared_ptr<JNDirectory> JNDirectory::parentDirectoryInfo() const
{
    return isMountPoint() ? nullptr : JNFileInfo::parentDirectoryInfo();
}

} // namespace havrel
