// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "fs/file_info.h"

namespace havrel {

/// What is known of a directory. While it lives it stands for its path, which refers to it without keeping it alive.
///
/// Threads: any thread.
class JNDirectory final : public JNFileInfo
{
public:
    JNDirectory(Token token, std::shared_ptr<JNPath> pathObject);

    /// The information of a directory, registered as the path's directoryInfo. When the path has one already, the new
    /// object takes a copy of the path, so that each path refers to at most one. Does not look at the disk.
    [[nodiscard]] static std::shared_ptr<JNDirectory> withPathObject(const std::shared_ptr<JNPath>& pathObject);
    /// Null when there is no directory. \selector +directoryWithPath:
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] static std::shared_ptr<JNDirectory> directoryWithPath(const QString& path);

    [[nodiscard]] std::shared_ptr<JNDirectory> asDirectory() override; ///< the receiver. \selector asDirectory
    /// Whether a file system is mounted here; blocks on the disk. \selector isMountPoint
    [[nodiscard]] bool isMountPoint() const;
    /// The volume: the one that was set, while it lives; else that of the living parent unless this is a mount point;
    /// else the path's, found once. \selector volumeInfo
    /// \throws HVException "IO" "problem getting volume statfs"
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> volumeInfo() override HAVREL_EXCLUDES(m_volumeLock);
    /// Tells the volume to use, without keeping it alive: it may own this object. \selector setVolumeInfo:
    void setVolumeInfo(const std::shared_ptr<JNVolumeInfo>& volumeInfo) HAVREL_EXCLUDES(m_volumeLock);

private:
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> findVolume() const;

    Mutex m_volumeLock;
    std::shared_ptr<JNVolumeInfo> m_volumeInfo HAVREL_GUARDED_BY(m_volumeLock);
    std::weak_ptr<JNVolumeInfo> m_circularVolInfo HAVREL_GUARDED_BY(m_volumeLock);
};

} // namespace havrel
