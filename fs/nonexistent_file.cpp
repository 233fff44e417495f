// SPDX-License-Identifier: MIT
#include "fs/nonexistent_file.h"

#include "fs/directory.h"
#include "fs/path.h"
#include "fs/volume_info.h"

namespace havrel {

JNFileInfoPtr JNNonexistentFile::withPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    return std::make_shared<JNNonexistentFile>(Token(), ItemType::None, pathObject);
}

bool JNNonexistentFile::exists() const noexcept
{
    return false;
}

std::shared_ptr<JNVolumeInfo> JNNonexistentFile::volumeInfo()
{
    return nullptr;
}

std::uint32_t JNNonexistentFile::linkCount() const
{
    return 0;
}

std::uint64_t JNNonexistentFile::deviceID() const
{
    const auto directory = pathObject()->directoryInfo();
    const auto parent = directory ? directory->livingParent() : nullptr;
    return parent ? parent->deviceID() : 0;
}

int JNNonexistentFile::getCommonAttrs() const
{
    return 0;
}

} // namespace havrel
