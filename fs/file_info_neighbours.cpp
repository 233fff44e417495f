// SPDX-License-Identifier: MIT
#include "fs/directory.h"
#include "fs/entry_list.h"
#include "fs/file_info.h"

namespace havrel {

JNFileInfoPtr JNFileInfo::nextContentFile() const
{
    return EntryList::firstContentFile(nextObj());
}

JNFileInfoPtr JNFileInfo::nextRegularFile() const
{
    return EntryList::firstOfType(nextObj(), ItemType::RegularFile);
}

std::shared_ptr<JNDirectory> JNFileInfo::nextDirectory() const
{
    const auto found = EntryList::firstOfType(nextObj(), ItemType::Directory);
    return found ? found->asDirectory() : nullptr;
}

JNAbstractFilePtr JNFileInfo::nextAbstractObj() const
{
    return nextObj();
}

JNAbstractFilePtr JNFileInfo::nextAbstractContentFile() const
{
    return nextContentFile();
}

JNAbstractFilePtr JNFileInfo::nextAbstractRegularFile() const
{
    return nextRegularFile();
}

JNAbstractDirectoryPtr JNFileInfo::nextAbstractDirectory() const
{
    return nextDirectory();
}

JNAbstractDirectoryPtr JNFileInfo::abstractParent() const
{
    return livingParent();
}

} // namespace havrel
