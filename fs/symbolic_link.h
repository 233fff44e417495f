// SPDX-License-Identifier: MIT
#pragma once

#include "fs/regular_file.h"

namespace havrel {

/// What is known of a symbolic link, whatever it leads to.
///
/// Threads: any thread.
class JNSymbolicLink final : public JNRegularFile
{
public:
    using JNRegularFile::JNRegularFile;

    /// What the link says, read once; of more than 1,024 bytes, the first 1,024. Blocks on the disk.
    ///
    /// \selector contents
    /// \throws HVException "IO" "cannot read content of symbolic link"
    [[nodiscard]] QByteArray contents() const HAVREL_EXCLUDES(m_attrLock);
    /// Replaces the link, or whatever has its name, by one that says \p contents. Not done in one step. Blocks on the
    /// disk.
    ///
    /// \selector setContents:
    /// \throws HVException "IO" "cannot delete item", or "cannot write content of symbolic link": then nothing has the
    ///         name any more, except after EINVAL, for contents that no link can have (none, or with a NUL inside)
    void setContents(const QByteArray& contents) HAVREL_EXCLUDES(m_attrLock);

    [[nodiscard]] std::uint64_t dataLength() const override; ///< the length of contents(). \selector dataLength
    [[nodiscard]] std::uint64_t totalLength() const;         ///< dataLength(). \selector totalLength
    [[nodiscard]] std::uint64_t rsrcLength() const noexcept { return 0; } ///< \selector rsrcLength
    /// That of the folder: the link's own path would lead through it. \selector volumeInfo
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> volumeInfo() override;
    [[nodiscard]] std::shared_ptr<JNSymbolicLink> asSymbolicLink() override; ///< the receiver. \selector asSymbolicLink
    [[nodiscard]] QString logTypeDescription() const override;               ///< "link". \selector logTypeDescription

private:
    void raise(int error, const QString& reason) const;

    mutable QByteArray m_contents HAVREL_GUARDED_BY(m_attrLock); // null until read
};

} // namespace havrel
