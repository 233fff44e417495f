// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/name_order.h"
#include "fs/directory.h"
#include "fs/file_info.h"
#include "fs/path_text.h"
#include "fs/sub_path.h"
#include "fs/volume_info.h"
#include "platform/file_names.h"

namespace havrel {

std::shared_ptr<JNPath> JNFileInfo::pathObject() const
{
    const MutexLock lock(m_attrLock);
    if (m_entryName) {
        m_pathObj = JNSubPath::withCName(QByteArray(m_entryName.get()), m_pathObj);
        m_entryName.reset();
    }
    return m_pathObj;
}

void JNFileInfo::setPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    const MutexLock lock(m_attrLock);
    m_entryName.reset();
    m_pathObj = pathObject;
}

QByteArray JNFileInfo::cName() const
{
    const MutexLock lock(m_attrLock);
    return m_entryName ? QByteArray(m_entryName.get()) : m_pathObj->cName();
}

bool JNFileInfo::hasCName(const QByteArray& name) const
{
    const MutexLock lock(m_attrLock);
    return m_entryName ? name == m_entryName.get() : name == m_pathObj->cName();
}

QByteArray JNFileInfo::cPath() const
{
    const MutexLock lock(m_attrLock);
    return cPath_nonblocking();
}

QByteArray JNFileInfo::cPath_nonblocking() const
{
    return m_entryName ? path_text::joined(m_pathObj->cPath(), m_entryName.get()) : m_pathObj->cPath();
}

QString JNFileInfo::name() const
{
    const MutexLock lock(m_attrLock);
    return m_entryName ? platform::textOfFileName(m_entryName.get()) : m_pathObj->name();
}

QString JNFileInfo::displayName() const
{
    return pathObject()->displayName();
}

QString JNFileInfo::path() const
{
    const MutexLock lock(m_attrLock);
    return m_entryName ? platform::textOfFileName(cPath_nonblocking()) : m_pathObj->path();
}

QUrl JNFileInfo::url() const
{
    return pathObject()->url();
}

QString JNFileInfo::extension() const
{
    return path_text::extension(name());
}

QString JNFileInfo::displayPath() const
{
    const auto parent = parentDirectoryInfo();
    return (parent ? parent->displayPath() : QStringLiteral("?/")) + displayName();
}

std::optional<QString> JNFileInfo::volumeRelativePath()
{
    try {
        const auto volume = volumeInfo();
        return volume ? volume->relativePathOfPath(*pathObject()) : std::nullopt;
    } catch (const HVException&) {
        Logr::log(LogClassification::Debug,
                  QStringLiteral("-[JNFileInfo volumeRelativePath] can't determine relative path for %1").arg(path()));
        logStackTrace(QStringLiteral("volumeRelativePath"));
        return path();
    }
}

std::shared_ptr<JNVolumeInfo> JNFileInfo::volumeInfo()
{
    return pathObject()->volumeInfo();
}

QString JNFileInfo::description() const
{
    return path();
}

QString JNFileInfo::logDescription() const
{
    return logTypeDescription() + u' ' + name();
}

QString JNFileInfo::logFullDescription() const
{
    return logTypeDescription() + u' ' + path();
}

QString JNFileInfo::logTypeDescription() const
{
    return QStringLiteral("item");
}

std::strong_ordering JNFileInfo::compareNames(const JNFileInfo& other) const
{
    return finderLikeCompare(name(), other.name());
}

} // namespace havrel
