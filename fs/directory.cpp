// SPDX-License-Identifier: MIT
#include "fs/directory.h"

#include "diagnostics/exception.h"
#include "fs/sub_path.h"
#include "platform/file_names.h"
#include "platform/items.h"
#include "platform/random.h"

#include <cerrno>
#include <utility>

namespace havrel {

std::shared_ptr<JNDirectory> JNDirectory::withPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    auto directory = std::make_shared<JNDirectory>(Token(), ItemType::Directory, pathObject);
    directory->standFor(pathObject);
    return directory;
}

std::shared_ptr<JNDirectory> JNDirectory::withBatchAttr(const Entry& entry, const std::shared_ptr<JNPath>& parentPath)
{
    auto directory = std::make_shared<JNDirectory>(Token(), entry, parentPath);
    directory->pathObject()->setDirectoryInfo(directory);
    return directory;
}

std::shared_ptr<JNDirectory> JNDirectory::directoryWithPath(const QString& path)
{
    const JNFileInfoPtr info = infoForPath(path);
    return info ? info->asDirectory() : nullptr;
}

std::shared_ptr<JNDirectory> JNDirectory::asDirectory()
{
    return std::static_pointer_cast<JNDirectory>(shared_from_this());
}

void JNDirectory::standFor(const std::shared_ptr<JNPath>& pathObject)
{
    if (pathObject->registerDirectoryInfo(asDirectory()))
        return;
    const JNPathPtr own = pathObject->copy();
    own->setDirectoryInfo(asDirectory());
    JNFileInfo::setPathObject(own);
}

void JNDirectory::setPathObject(const std::shared_ptr<JNPath>& pathObject)
{
    const JNPathPtr old = this->pathObject();
    if (old->directoryInfo() == asDirectory())
        old->setDirectoryInfo(nullptr);
    JNFileInfo::setPathObject(pathObject);
    standFor(pathObject);
    flushDirectoryContents();
}

std::shared_ptr<JNPath> JNDirectory::pathForCName(const QByteArray& name) const
{
    return JNSubPath::withCName(name, pathObject());
}

std::shared_ptr<JNPath> JNDirectory::pathForName(const QString& name) const
{
    return pathForCName(platform::bytesOfFileName(name));
}

bool JNDirectory::containsFile(const JNFileInfo& info) const
{
    return info.cPath().startsWith(cPath() + '/');
}

std::shared_ptr<JNDirectory> JNDirectory::createSubdirectoryWithName(const QString& name, mode_t mode)
{
    const JNPathPtr path = pathForName(name);
    if (const int error = platform::createFolder(path->cPath(), mode); error != 0) {
        HVException::ioErrno(error, QStringLiteral("could not create directory"))
            .setPathObject(*path)
            .setDecimalDetail(mode, QStringLiteral("mode"))
            .raise();
    }
    return path->directory();
}

std::shared_ptr<JNDirectory>
JNDirectory::createUniqueSubdirectoryWithPrefix(const QString& prefix, const QString& extension, mode_t mode)
{
    for (;;) {
        QString name = prefix + u'.' + QStringLiteral("%1").arg(platform::random32(), 8, 16, QLatin1Char('0'));
        if (!extension.isNull())
            name += u'.' + extension;
        try {
            return createSubdirectoryWithName(name, mode);
        } catch (const HVException& failure) {
            if (failure.detail(detail_key::kPOSIXErr) != QVariant(EEXIST))
                throw;
        }
    }
}

} // namespace havrel
