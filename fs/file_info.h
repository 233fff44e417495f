// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_types.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <memory>
#include <optional>

namespace havrel {

class JNDirectory;
class JNFileInfo;
class JNPath;
class JNVolumeInfo;
using JNFileInfoPtr = std::shared_ptr<JNFileInfo>;
using platform::ItemType;

/// What is known of one item: its kind as it was found, and its path, which it asks for names and whole-item work.
/// Describes the item itself, never the target of a link. A change of kind on the disk is noticed by reevaluateType()
/// only.
///
/// Threads: any thread.
class JNFileInfo : public std::enable_shared_from_this<JNFileInfo>
{
protected:
    struct Token
    {
        explicit Token() = default;
    };

public:
    JNFileInfo(Token token, ItemType type, std::shared_ptr<JNPath> pathObject);
    virtual ~JNFileInfo();
    JNFileInfo(const JNFileInfo&) = delete;
    JNFileInfo& operator=(const JNFileInfo&) = delete;
    JNFileInfo(JNFileInfo&&) = delete;
    JNFileInfo& operator=(JNFileInfo&&) = delete;

    /// Looks at the item and answers an object of the class for its kind: `JNDirectory` for a directory,
    /// `JNNonexistentFile` when there is nothing (or a part of the path is no directory). Blocks on the disk.
    ///
    /// \selector +infoForPathObject:
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] static JNFileInfoPtr infoForPathObject(const std::shared_ptr<JNPath>& pathObject);
    [[nodiscard]] static JNFileInfoPtr infoForCPath(const QByteArray& path); ///< \selector +infoForCPath:
    [[nodiscard]] static JNFileInfoPtr infoForPath(const QString& path);     ///< \selector +infoForPath:
    /// Null when \p url is no file URL. \selector +infoForURL:
    [[nodiscard]] static JNFileInfoPtr infoForURL(const QUrl& url);
    /// The object of the class for \p type, without looking at the disk; null for the types None and Bad.
    /// \selector initWithType:pathObject:
    [[nodiscard]] static JNFileInfoPtr withType(ItemType type, const std::shared_ptr<JNPath>& pathObject);

    [[nodiscard]] const std::shared_ptr<JNPath>& pathObject() const noexcept
    {
        return m_pathObj;
    }                                                  ///< \selector pathObject
    [[nodiscard]] QByteArray cName() const;            ///< \selector cName
    [[nodiscard]] QByteArray cPath() const;            ///< \selector cPath
    [[nodiscard]] QString name() const;                ///< \selector name
    [[nodiscard]] virtual QString displayName() const; ///< \selector displayName
    [[nodiscard]] QString path() const;                ///< \selector path
    [[nodiscard]] QUrl url() const;                    ///< \selector url
    [[nodiscard]] QString extension() const;           ///< \selector extension
    /// The path's; null when nothing exists. \selector volumeInfo
    [[nodiscard]] virtual std::shared_ptr<JNVolumeInfo> volumeInfo();

    [[nodiscard]] ItemType type() const noexcept { return m_vtype; } ///< \selector type
    [[nodiscard]] bool isDirectory() const noexcept
    {
        return m_vtype == ItemType::Directory;
    } ///< \selector isDirectory
    [[nodiscard]] bool isRegularFile() const noexcept
    {
        return m_vtype == ItemType::RegularFile;
    } ///< \selector isRegularFile
    [[nodiscard]] bool isSymbolicLink() const noexcept
    {
        return m_vtype == ItemType::SymbolicLink;
    } ///< \selector isSymbolicLink
    /// A file, directory or link. \selector isPersistentObject
    [[nodiscard]] bool isPersistentObject() const noexcept;
    /// The receiver when it is a directory, else null. \selector asDirectory
    [[nodiscard]] virtual std::shared_ptr<JNDirectory> asDirectory();
    [[nodiscard]] virtual bool exists() const noexcept; ///< \selector exists

    /// The receiver while the kind of the item is unchanged, else a new object. Blocks on the disk.
    /// \selector reevaluateType
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] JNFileInfoPtr reevaluateType();
    /// The information of the folder that this item was listed in, while it lives. \selector livingParent
    [[nodiscard]] std::shared_ptr<JNDirectory> livingParent() const;
    /// The device that the item itself lies on; a failure is logged at Debug and answers nothing. Blocks on the disk.
    /// \selector volumeIdentifier
    [[nodiscard]] std::optional<std::uint64_t> volumeIdentifier() const;

    [[nodiscard]] bool isEqual(const JNFileInfo& other) const; ///< the paths have equal bytes. \selector isEqual:
    [[nodiscard]] QString description() const;                 ///< the path. \selector description

private:
    std::shared_ptr<JNPath> m_pathObj;
    ItemType m_vtype;
};

} // namespace havrel
