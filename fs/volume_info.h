// SPDX-License-Identifier: MIT
#pragma once

#include "platform/file_systems.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace havrel {

class JNPath;
class JNVolumeInfo;
using JNVolumeInfoPtr = std::shared_ptr<JNVolumeInfo>;

/// What is known of a mounted volume: its identity and what it can do. Taken when the object is made.
///
/// Threads: any thread.
class JNVolumeInfo
{
    struct Token
    {
        explicit Token() = default;
    };

public:
    JNVolumeInfo(Token token, platform::FileSystem fileSystem);

    /// The volume that \p path leads to; that of its folder when there is no such item. Blocks on the disk.
    ///
    /// \selector initWithPath:
    /// \throws HVException "IO" "problem getting volume statfs" with the path that failed
    [[nodiscard]] static JNVolumeInfoPtr withPath(const QByteArray& path);
    [[nodiscard]] static JNVolumeInfoPtr
    volumeInfoForPathObject(const JNPath& path); ///< \selector +volumeInfoForPathObject:
    [[nodiscard]] static JNVolumeInfoPtr volumeInfoForPath(const QString& path); ///< \selector +volumeInfoForPath:

    /// The two words of the file-system id, the first one lowest. \selector filesystemID
    [[nodiscard]] std::uint64_t filesystemID() const noexcept { return m_stat.id; }
    /// Whether two items can be exchanged in one step. \selector hasSwapping
    [[nodiscard]] bool hasSwapping() const;
    /// Whether the contents of two files can be exchanged by a call of its own: nowhere on this system.
    /// \selector hasExchangeData
    [[nodiscard]] bool hasExchangeData() const noexcept { return false; }

    [[nodiscard]] bool
    isEqual(const JNVolumeInfo& other) const noexcept; ///< the same file-system id. \selector isEqual:
    [[nodiscard]] std::uint64_t hash() const noexcept { return filesystemID(); } ///< \selector hash

private:
    platform::FileSystem m_stat;
};

} // namespace havrel
