// SPDX-License-Identifier: MIT
#pragma once

#include "fs/file_info.h"

namespace havrel {

/// What is known of a path at which nothing is: that, and the path. Its type is None, its attributes are all 0, and
/// setting them does nothing.
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
    [[nodiscard]] std::uint32_t linkCount() const override; ///< 0. \selector linkCount
    /// That of the folder that the path's directory information was listed in; 0 without one. \selector deviceID
    [[nodiscard]] std::uint64_t deviceID() const override;

protected:
    /// Does nothing. \selector getCommonAttrs
    [[nodiscard]] int getCommonAttrs() const override HAVREL_REQUIRES(m_attrLock);
};

} // namespace havrel
