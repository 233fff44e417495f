// SPDX-License-Identifier: MIT
#include "fs/file_info.h"
#include "fs/nonexistent_file.h"
#include "fs/path.h"

namespace havrel {
namespace {

/// Only the contents of a file can be shared with its copy.
Cloning cloningOf(const JNFileInfo& info, Cloning wanted)
{
    return info.isRegularFile() ? wanted : Cloning::No;
}

} // namespace

void JNFileInfo::moveToDirectory(const std::optional<QString>& directory,
                                 const std::optional<QString>& name,
                                 Overwriting overwriting)
{
    setPathObject(pathObject()->moveToDirectory(directory, name, overwriting));
}

void JNFileInfo::moveTo(const QString& target, Overwriting overwriting)
{
    setPathObject(pathObject()->moveTo(target, overwriting));
}

JNFileInfoPtr JNFileInfo::copyToDirectory(const std::optional<QString>& directory,
                                          const std::optional<QString>& name,
                                          Overwriting overwriting,
                                          Cloning cloning) const
{
    return infoForPathObject(pathObject()->copyToDirectory(directory, name, overwriting, cloningOf(*this, cloning)));
}

JNFileInfoPtr JNFileInfo::copyTo(const QString& target, Overwriting overwriting, Cloning cloning) const
{
    return infoForPathObject(pathObject()->copyTo(target, overwriting, cloningOf(*this, cloning)));
}

bool JNFileInfo::tryToDeleteFile() const
{
    return pathObject()->tryToDeleteFile();
}

JNFileInfoPtr JNFileInfo::deleteFile() const
{
    pathObject()->deleteFile();
    return JNNonexistentFile::withPathObject(pathObject());
}

JNFileInfoPtr JNFileInfo::swapWith(const JNFileInfo& other) const
{
    const JNPathPtr otherPath = other.pathObject();
    pathObject()->swapWith(*otherPath);
    return infoForPathObject(otherPath);
}

} // namespace havrel
