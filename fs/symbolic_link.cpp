// SPDX-License-Identifier: MIT
#include "fs/symbolic_link.h"

#include "diagnostics/exception.h"
#include "fs/volume_info.h"
#include "platform/items.h"
#include "platform/links.h"

#include <cerrno>

namespace havrel {
namespace {

constexpr qsizetype kLongestContents = 1024; // bytes, as every reader of these links takes them

bool canBeContents(const QByteArray& contents)
{
    return !contents.isEmpty() && !contents.contains('\0');
}

} // namespace

QByteArray JNSymbolicLink::contents() const
{
    const QByteArray path = cPath();
    QByteArray contents;
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        if (m_contents.isNull())
            error = platform::readLink(path, kLongestContents, m_contents);
        contents = m_contents;
    }
    if (error != 0)
        raise(error, QStringLiteral("cannot read content of symbolic link"));
    return contents;
}

void JNSymbolicLink::setContents(const QByteArray& contents)
{
    {
        const MutexLock lock(m_attrLock);
        m_contents = QByteArray();
    }
    const QByteArray path = cPath();
    int error = canBeContents(contents) ? 0 : EINVAL;
    if (error == 0) {
        if (platform::findName(path) == 0)
            pathObject()->deleteFile();
        error = platform::makeLink(path, contents);
    }
    if (error != 0)
        raise(error, QStringLiteral("cannot write content of symbolic link"));
    const MutexLock lock(m_attrLock);
    m_contents = contents;
}

std::uint64_t JNSymbolicLink::dataLength() const
{
    return static_cast<std::uint64_t>(contents().size());
}

std::uint64_t JNSymbolicLink::totalLength() const
{
    return dataLength();
}

std::shared_ptr<JNVolumeInfo> JNSymbolicLink::volumeInfo()
{
    return pathObject()->parent()->volumeInfo();
}

std::shared_ptr<JNSymbolicLink> JNSymbolicLink::asSymbolicLink()
{
    return std::static_pointer_cast<JNSymbolicLink>(shared_from_this());
}

QString JNSymbolicLink::logTypeDescription() const
{
    return QStringLiteral("link");
}

void JNSymbolicLink::raise(int error, const QString& reason) const
{
    HVException::ioErrno(error, reason).setFileInfo(*this).raise();
}

} // namespace havrel
