// SPDX-License-Identifier: MIT
#include "fs/directory.h"
#include "platform/file_names.h"

namespace havrel {

JNFileInfoPtr JNDirectory::firstContentFile()
{
    return EntryList::firstContentFile(firstObject());
}

JNFileInfoPtr JNDirectory::firstRegularFile()
{
    return EntryList::firstOfType(firstObject(), ItemType::RegularFile);
}

std::shared_ptr<JNDirectory> JNDirectory::firstDirectory()
{
    const auto found = EntryList::firstOfType(firstObject(), ItemType::Directory);
    return found ? found->asDirectory() : nullptr;
}

JNFileInfoPtr JNDirectory::objectMatchingCName(const QByteArray& name)
{
    return EntryList::firstWith(firstObject(), [&name](const JNFileInfo& each) { return each.hasCName(name); });
}

JNFileInfoPtr JNDirectory::objectMatchingName(const QString& name)
{
    return objectMatchingCName(platform::bytesOfFileName(name));
}

std::shared_ptr<JNDirectory> JNDirectory::subdirectoryMatchingCName(const QByteArray& name)
{
    const auto found = objectMatchingCName(name);
    return found ? found->asDirectory() : nullptr;
}

std::shared_ptr<JNDirectory> JNDirectory::subdirectoryMatchingName(const QString& name)
{
    return subdirectoryMatchingCName(platform::bytesOfFileName(name));
}

JNFileInfoPtr JNDirectory::infoForCName(const QByteArray& name)
{
    auto found = objectMatchingCName(name);
    return found ? found : infoForPathObject(pathForCName(name));
}

JNFileInfoPtr JNDirectory::infoForName(const QString& name)
{
    return infoForCName(platform::bytesOfFileName(name));
}

JNAbstractFilePtr JNDirectory::abstractObjectMatchingCName(const QByteArray& name)
{
    return objectMatchingCName(name);
}

JNAbstractFilePtr JNDirectory::abstractObjectMatchingName(const QString& name)
{
    return objectMatchingName(name);
}

JNAbstractDirectoryPtr JNDirectory::abstractSubdirectoryMatchingCName(const QByteArray& name)
{
    return subdirectoryMatchingCName(name);
}

JNAbstractDirectoryPtr JNDirectory::abstractSubdirectoryMatchingName(const QString& name)
{
    return subdirectoryMatchingName(name);
}

JNAbstractFilePtr JNDirectory::firstAbstractObject()
{
    return firstObject();
}

JNAbstractFilePtr JNDirectory::firstAbstractContentFile()
{
    return firstContentFile();
}

JNAbstractFilePtr JNDirectory::firstAbstractRegularFile()
{
    return firstRegularFile();
}

JNAbstractDirectoryPtr JNDirectory::firstAbstractDirectory()
{
    return firstDirectory();
}

} // namespace havrel
