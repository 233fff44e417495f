// SPDX-License-Identifier: MIT
#include "fs/directory.h"
#include "fs/path.h"
#include "fs/volume_info.h"

namespace havrel {
namespace {

/// \p path as seen from the outermost folder above it that is still on \p volume; none when no other volume is above.
std::optional<QString> pathOnVolume(const JNPath& path, const JNVolumeInfo& volume)
{
    JNPathPtr innermost; // the last ancestor on the volume; the path itself to begin with
    const JNPath* last = &path;
    for (;;) {
        JNPathPtr parent = last->parent();
        if (parent->isEqual(*last))
            return std::nullopt;
        if (!parent->volumeInfo()->isEqual(volume))
            return path.pathRelativeToPath(*last);
        innermost = std::move(parent);
        last = innermost.get();
    }
}

} // namespace

std::optional<QString> JNVolumeInfo::relativePathOfPath(const JNPath& path)
{
    const auto root = rootDirectory();
    const QString relative = path.pathRelativeToPath(root ? *root->pathObject() : *m_pathObj);
    if (!relative.startsWith(u'/'))
        return relative;
    return path.volumeInfo()->isEqual(*this) ? pathOnVolume(path, *this) : std::nullopt;
}

} // namespace havrel
