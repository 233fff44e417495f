// SPDX-License-Identifier: MIT
#include "fs/directory.h"
#include "fs/file_info.h"
#include "fs/path.h"
#include "fs/volume_info.h"

namespace havrel {

std::shared_ptr<JNFileInfo> JNPath::fileInfo()
{
    if (auto info = directoryInfo())
        return info;
    return JNFileInfo::infoForPathObject(shared_from_this());
}

std::shared_ptr<JNDirectory> JNPath::directory()
{
    const auto info = fileInfo();
    return info ? info->asDirectory() : nullptr;
}

std::shared_ptr<JNDirectory> JNPath::directoryInfo() const
{
    const MutexLock lock(m_pathLock);
    return m_directory.lock();
}

void JNPath::setDirectoryInfo(const std::shared_ptr<JNDirectory>& info)
{
    const MutexLock lock(m_pathLock);
    m_directory = info;
}

bool JNPath::registerDirectoryInfo(const std::shared_ptr<JNDirectory>& info)
{
    const MutexLock lock(m_pathLock);
    if (const auto other = m_directory.lock(); other && other != info)
        return false;
    m_directory = info;
    return true;
}

std::shared_ptr<JNVolumeInfo> JNPath::volumeInfo() const
{
    if (const auto info = directoryInfo())
        return info->volumeInfo();
    return JNVolumeInfo::withPath(cPath());
}

} // namespace havrel
