// SPDX-License-Identifier: MIT
#pragma once

#include "fs/path.h"

namespace havrel {

/// A path that keeps a name and its parent, and joins them when the whole is first asked for: what a folder's entries
/// are made of, many at a time.
///
/// Threads: any thread.
class JNSubPath final : public JNPath
{
public:
    JNSubPath(Token token, QByteArray name, JNPathPtr parentPath, QByteArray path);

    /// The item \p name in the folder \p parentPath. \selector initWithCName:parentPath:
    [[nodiscard]] static JNPathPtr withCName(QByteArray name, JNPathPtr parentPath);
    /// The path in an archive; its parent is made from the bytes. Null when there is none. \selector initWithCoder:
    [[nodiscard]] static JNPathPtr withCoder(Decoder& decoder);

    /// A sub path of the same parent, with the whole path made. \selector copyWithZone:
    [[nodiscard]] JNPathPtr copy() const override;
    /// The parent that it was made with. \selector parent
    [[nodiscard]] JNPathPtr parent() const override { return m_parentPath; }
    /// \selector parentPath
    [[nodiscard]] const JNPathPtr& parentPath() const noexcept { return m_parentPath; }
    [[nodiscard]] QString className() const override;

protected:
    [[nodiscard]] const QByteArray& cPath_nonblocking() const override HAVREL_REQUIRES(m_pathLock);

private:
    const JNPathPtr m_parentPath;
};

} // namespace havrel
