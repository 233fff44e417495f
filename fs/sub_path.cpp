// SPDX-License-Identifier: MIT
#include "fs/sub_path.h"

#include "fs/path_text.h"

#include <utility>

namespace havrel {

JNSubPath::JNSubPath(Token token, QByteArray name, JNPathPtr parentPath, QByteArray path)
    : JNPath(token, std::move(name), std::move(path))
    , m_parentPath(std::move(parentPath))
{
}

JNPathPtr JNSubPath::withCName(QByteArray name, JNPathPtr parentPath)
{
    return std::make_shared<JNSubPath>(Token(), std::move(name), std::move(parentPath), QByteArray());
}

JNPathPtr JNSubPath::withCoder(Decoder& decoder)
{
    const QByteArray path = decodedCPath(decoder);
    if (path.isNull())
        return nullptr;
    return std::make_shared<JNSubPath>(Token(),
                                       path_text::baseName(path).toByteArray(),
                                       JNPath::withCPath(path_text::directoryName(path).toByteArray()),
                                       path);
}

JNPathPtr JNSubPath::copy() const
{
    auto same = std::make_shared<JNSubPath>(Token(), cName(), m_parentPath, cPath());
    same->shareForms(*this);
    return same;
}

const QByteArray& JNSubPath::cPath_nonblocking() const
{
    if (m_cPath.isNull())
        m_cPath = path_text::joined(m_parentPath->cPath(), cName());
    return m_cPath;
}

} // namespace havrel
