// SPDX-License-Identifier: MIT
#pragma once

#include "fs/file_info.h"

namespace havrel {

/// What is known of a file; a link is a JNSymbolicLink, which derives from this. All sizes are in bytes.
///
/// Threads: any thread.
class JNRegularFile : public JNFileInfo
{
public:
    using JNFileInfo::JNFileInfo;

    /// The file at the path, or null when there is something else and nothing was asked to be raised, or nothing.
    /// Blocks on the disk.
    ///
    /// \selector +regularInfoForPathObject:
    /// \selector +regularInfoForPathObject:throwingException:
    /// \param reason null: nothing is raised.
    /// \throws HVException "IO" with \p reason and the path, when there is something else; "failed to probe object
    ///         vtype"
    [[nodiscard]] static std::shared_ptr<JNRegularFile>
    regularInfoForPathObject(const std::shared_ptr<JNPath>& pathObject,
                             const QString& reason = QStringLiteral("expected regular file"));

    [[nodiscard]] std::shared_ptr<JNRegularFile> asRegularFile() override; ///< the receiver. \selector asRegularFile
    [[nodiscard]] QString logTypeDescription() const override;             ///< "file". \selector logTypeDescription
    [[nodiscard]] std::uint32_t linkCount() const override;                ///< \selector linkCount
    [[nodiscard]] std::uint64_t logicalSize() const;                       ///< \selector logicalSize
    [[nodiscard]] std::uint64_t physicalSize() const;                      ///< on the disk. \selector physicalSize
    [[nodiscard]] virtual std::uint64_t dataLength() const;                ///< \selector dataLength
    [[nodiscard]] std::uint64_t dataPhysical() const;                      ///< on the disk. \selector dataPhysical
};

} // namespace havrel
