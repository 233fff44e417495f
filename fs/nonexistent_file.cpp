// SPDX-License-Identifier: MIT
#include "fs/nonexistent_file.h"

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

} // namespace havrel
