// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_types.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace havrel {

class JNAbstractDirectory;
class JNAbstractFile;
using JNAbstractFilePtr = std::shared_ptr<JNAbstractFile>;
using JNAbstractDirectoryPtr = std::shared_ptr<JNAbstractDirectory>;

/// An item of any tree of items, on the disk or kept elsewhere, for code that walks them all alike. A folder is also a
/// JNAbstractDirectory.
///
/// Threads: as the class that adopts it.
class JNAbstractFile
{
public:
    virtual ~JNAbstractFile() = default;
    JNAbstractFile(const JNAbstractFile&) = delete;
    JNAbstractFile& operator=(const JNAbstractFile&) = delete;
    JNAbstractFile(JNAbstractFile&&) = delete;
    JNAbstractFile& operator=(JNAbstractFile&&) = delete;

    /// The next item of the folder; null after the last. \selector nextAbstractObj
    [[nodiscard]] virtual JNAbstractFilePtr nextAbstractObj() const = 0;
    /// The next file or link. \selector nextAbstractContentFile
    [[nodiscard]] virtual JNAbstractFilePtr nextAbstractContentFile() const = 0;
    /// The next file. \selector nextAbstractRegularFile
    [[nodiscard]] virtual JNAbstractFilePtr nextAbstractRegularFile() const = 0;
    /// The next folder. \selector nextAbstractDirectory
    [[nodiscard]] virtual JNAbstractDirectoryPtr nextAbstractDirectory() const = 0;
    /// The folder that the item was found in, while it lives. \selector abstractParent
    [[nodiscard]] virtual JNAbstractDirectoryPtr abstractParent() const = 0;

    [[nodiscard]] virtual QByteArray cName() const = 0;                 ///< \selector cName
    [[nodiscard]] virtual QByteArray cPath() const = 0;                 ///< \selector cPath
    [[nodiscard]] virtual QString name() const = 0;                     ///< \selector name
    [[nodiscard]] virtual QString displayName() const = 0;              ///< \selector displayName
    [[nodiscard]] virtual QString path() const = 0;                     ///< \selector path
    [[nodiscard]] virtual platform::ItemType type() const noexcept = 0; ///< \selector type
    [[nodiscard]] virtual bool isDirectory() const noexcept = 0;        ///< \selector isDirectory
    [[nodiscard]] virtual bool isRegularFile() const noexcept = 0;      ///< \selector isRegularFile
    [[nodiscard]] virtual bool isSymbolicLink() const noexcept = 0;     ///< \selector isSymbolicLink
    /// A file, directory or link. \selector isPersistentObject
    [[nodiscard]] virtual bool isPersistentObject() const noexcept = 0;

protected:
    JNAbstractFile() = default;
};

} // namespace havrel
