// SPDX-License-Identifier: MIT
#pragma once

#include "fs/file_info.h"

namespace havrel {

/// What is known of a path at which nothing is: that, and the path. Its type is None.
///
/// Threads: any thread.
class JNNonexistentFile final : public JNFileInfo
{
public:
    using JNFileInfo::JNFileInfo;

    [[nodiscard]] static JNFileInfoPtr withPathObject(const std::shared_ptr<JNPath>& pathObject);

    [[nodiscard]] bool exists() const noexcept override; ///< false. \selector exists
    /// Null. \selector volumeInfo
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> volumeInfo() override;
};

} // namespace havrel
