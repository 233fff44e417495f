// SPDX-License-Identifier: MIT
#include "fs/volume_info.h"

#include "diagnostics/exception.h"
#include "fs/path.h"
#include "fs/path_text.h"
#include "platform/file_names.h"

#include <cerrno>

namespace havrel {

JNVolumeInfo::JNVolumeInfo(Token /*token*/, platform::FileSystem fileSystem)
    : m_stat(fileSystem)
{
}

JNVolumeInfoPtr JNVolumeInfo::withPath(const QByteArray& path)
{
    platform::FileSystem found;
    QByteArray asked = path;
    int error = platform::findFileSystem(asked, found);
    if (error == ENOENT) {
        asked = path_text::directoryName(path).toByteArray();
        error = platform::findFileSystem(asked, found);
    }
    if (error != 0)
        HVException::ioErrno(error, QStringLiteral("problem getting volume statfs"))
            .setCPath(asked.constData())
            .raise();
    return std::make_shared<JNVolumeInfo>(Token(), found);
}

JNVolumeInfoPtr JNVolumeInfo::volumeInfoForPathObject(const JNPath& path)
{
    return withPath(path.cPath());
}

JNVolumeInfoPtr JNVolumeInfo::volumeInfoForPath(const QString& path)
{
    return withPath(platform::bytesOfFileName(path));
}

bool JNVolumeInfo::hasSwapping() const
{
    return platform::exchangesItems(m_stat);
}

bool JNVolumeInfo::isEqual(const JNVolumeInfo& other) const noexcept
{
    return filesystemID() == other.filesystemID();
}

} // namespace havrel
