// SPDX-License-Identifier: MIT
#include "fs/regular_file.h"

#include "diagnostics/exception.h"

namespace havrel {

std::shared_ptr<JNRegularFile> JNRegularFile::regularInfoForPathObject(const std::shared_ptr<JNPath>& pathObject,
                                                                       const QString& reason)
{
    const JNFileInfoPtr info = infoForPathObject(pathObject);
    if (info && info->isRegularFile())
        return info->asRegularFile();
    if (!reason.isNull() && info && info->exists())
        HVException(exception_name::kIO, reason).setPathObject(*pathObject).raise();
    return nullptr;
}

std::shared_ptr<JNRegularFile> JNRegularFile::asRegularFile()
{
    return std::static_pointer_cast<JNRegularFile>(shared_from_this());
}

QString JNRegularFile::logTypeDescription() const
{
    return QStringLiteral("file");
}

std::uint32_t JNRegularFile::linkCount() const
{
    return attrs().linkCount;
}

std::uint64_t JNRegularFile::logicalSize() const
{
    return attrs().logicalSize;
}

std::uint64_t JNRegularFile::physicalSize() const
{
    return attrs().physicalSize;
}

/// There are no other parts of a file than its data here.
std::uint64_t JNRegularFile::dataLength() const
{
    return logicalSize();
}

std::uint64_t JNRegularFile::dataPhysical() const
{
    return physicalSize();
}

} // namespace havrel
