// SPDX-License-Identifier: MIT
#pragma once

#include "fs/abstract_file.h"

namespace havrel {

/// A folder of any tree of items; every one is also a JNAbstractFile (std::dynamic_pointer_cast leads from one to the
/// other). Each operation may read the folder.
///
/// Threads: as the class that adopts it.
class JNAbstractDirectory
{
public:
    virtual ~JNAbstractDirectory() = default;
    JNAbstractDirectory(const JNAbstractDirectory&) = delete;
    JNAbstractDirectory& operator=(const JNAbstractDirectory&) = delete;
    JNAbstractDirectory(JNAbstractDirectory&&) = delete;
    JNAbstractDirectory& operator=(JNAbstractDirectory&&) = delete;

    /// The first item with exactly the name; null when there is none. \selector abstractObjectMatchingCName:
    [[nodiscard]] virtual JNAbstractFilePtr abstractObjectMatchingCName(const QByteArray& name) = 0;
    /// \selector abstractObjectMatchingName:
    [[nodiscard]] virtual JNAbstractFilePtr abstractObjectMatchingName(const QString& name) = 0;
    /// The same when it is a folder, else null. \selector abstractSubdirectoryMatchingCName:
    [[nodiscard]] virtual JNAbstractDirectoryPtr abstractSubdirectoryMatchingCName(const QByteArray& name) = 0;
    /// \selector abstractSubdirectoryMatchingName:
    [[nodiscard]] virtual JNAbstractDirectoryPtr abstractSubdirectoryMatchingName(const QString& name) = 0;
    /// The first item; null when the folder is empty. \selector firstAbstractObject
    [[nodiscard]] virtual JNAbstractFilePtr firstAbstractObject() = 0;
    /// The first file or link. \selector firstAbstractContentFile
    [[nodiscard]] virtual JNAbstractFilePtr firstAbstractContentFile() = 0;
    /// The first file. \selector firstAbstractRegularFile
    [[nodiscard]] virtual JNAbstractFilePtr firstAbstractRegularFile() = 0;
    /// The first folder. \selector firstAbstractDirectory
    [[nodiscard]] virtual JNAbstractDirectoryPtr firstAbstractDirectory() = 0;

protected:
    JNAbstractDirectory() = default;
};

} // namespace havrel
