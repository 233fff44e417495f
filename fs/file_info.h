// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/timestamp.h"
#include "foundation/unfair_lock.h"
#include "fs/abstract_file.h"
#include "fs/path.h"
#include "platform/access_list.h"
#include "platform/item_status.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <compare>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace havrel {

class JNDirectory;
class JNFileInfo;
class JNRegularFile;
class JNSymbolicLink;
class JNVolumeInfo;
using JNFileInfoPtr = std::shared_ptr<JNFileInfo>;
using platform::ItemType;

/// What is known of one item: its kind as it was found, its attributes as they were when they were first asked for, and
/// its path, which it asks for names and whole-item work. Describes the item itself, never the target of a link. A
/// change of kind on the disk is noticed by reevaluateType() only, one of attributes after flushAttributes().
///
/// Attributes that are asked for are fetched all at once, which blocks on the disk; entries of a folder that was read
/// have them already. Where they cannot be fetched, every accessor and setter of one throws HVException "IO" "failed to
/// get attributes" with the facts of the item. Setters change what is known only; setModifiedAttributes() writes it.
///
/// Threads: any thread.
class JNFileInfo : public JNAbstractFile, public std::enable_shared_from_this<JNFileInfo>
{
protected:
    struct Token
    {
        explicit Token() = default;
    };

public:
    /// An entry of a folder that is being read: its kind, its name, and its attributes if they are known.
    struct Entry
    {
        ItemType type = ItemType::None;
        const char* name = nullptr;
        const platform::ItemStatus* status = nullptr;
    };

    JNFileInfo(Token token, ItemType type, std::shared_ptr<JNPath> pathObject);
    JNFileInfo(Token token, const Entry& entry, std::shared_ptr<JNPath> parentPath);
    /// What follows in a list of entries is not released with it, but later, see fs/pending_release.h.
    ~JNFileInfo() override;
    JNFileInfo(const JNFileInfo&) = delete;
    JNFileInfo& operator=(const JNFileInfo&) = delete;
    JNFileInfo(JNFileInfo&&) = delete;
    JNFileInfo& operator=(JNFileInfo&&) = delete;

    // ---- making one

    /// Looks at the item and answers an object of the class for its kind: `JNRegularFile`, `JNDirectory`,
    /// `JNSymbolicLink`, `JNNonexistentFile` when there is nothing (or a part of the path is no directory), else this
    /// class. Blocks on the disk.
    ///
    /// \selector +infoForPathObject:
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] static JNFileInfoPtr infoForPathObject(const std::shared_ptr<JNPath>& pathObject);
    [[nodiscard]] static JNFileInfoPtr infoForCPath(const QByteArray& path); ///< \selector +infoForCPath:
    [[nodiscard]] static JNFileInfoPtr infoForPath(const QString& path);     ///< \selector +infoForPath:
    /// Null when \p url is no file URL. \selector +infoForURL:
    [[nodiscard]] static JNFileInfoPtr infoForURL(const QUrl& url);
    /// The same for an open item, which is asked instead of the path unless \p descriptor is -1. Answers \p existing
    /// where that is already of the kind found.
    ///
    /// \selector +infoForFile:pathObject:ifTypeDifferentFrom:
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] static JNFileInfoPtr
    infoForFile(int descriptor, const std::shared_ptr<JNPath>& pathObject, const JNFileInfoPtr& existing);
    /// The object of the class for \p type, without looking at the disk; null for the types None and Bad.
    /// \selector initWithType:pathObject:
    [[nodiscard]] static JNFileInfoPtr withType(ItemType type, const std::shared_ptr<JNPath>& pathObject);
    /// The entry \p name of a folder, of the \p kind that the file system lists (DT_REG ...); null for an unknown one.
    /// \selector initWithDirEntry:parentPath:
    [[nodiscard]] static JNFileInfoPtr
    withDirEntry(const char* name, std::uint8_t kind, const std::shared_ptr<JNPath>& parentPath);
    /// The same with its attributes, when there are any; null for the types None and Bad.
    /// \selector initWithBatchAttr:set:parentPath:
    [[nodiscard]] static JNFileInfoPtr withBatchAttr(const Entry& entry, const std::shared_ptr<JNPath>& parentPath);

    // ---- names

    /// Made when it is first asked for, with an entry of a folder. \selector pathObject
    [[nodiscard]] std::shared_ptr<JNPath> pathObject() const HAVREL_EXCLUDES(m_attrLock);
    /// \selector setPathObject:
    virtual void setPathObject(const std::shared_ptr<JNPath>& pathObject) HAVREL_EXCLUDES(m_attrLock);
    [[nodiscard]] QByteArray cName() const override HAVREL_EXCLUDES(m_attrLock); ///< \selector cName
    [[nodiscard]] QByteArray cPath() const override HAVREL_EXCLUDES(m_attrLock); ///< \selector cPath
    [[nodiscard]] QString name() const override HAVREL_EXCLUDES(m_attrLock);     ///< \selector name
    [[nodiscard]] QString displayName() const override;                          ///< \selector displayName
    [[nodiscard]] QString path() const override HAVREL_EXCLUDES(m_attrLock);     ///< \selector path
    [[nodiscard]] QUrl url() const;                                              ///< \selector url
    [[nodiscard]] QString extension() const;                                     ///< \selector extension
    /// The path for people: that of the parent, or "?/" where there is none, and displayName(). Looks at the disk.
    /// \selector displayPath
    [[nodiscard]] virtual QString displayPath() const;
    /// The path as its volume sees it; none when that cannot be told. Where the volume cannot be asked, that is logged
    /// at Debug with the stack, and the answer is the whole path. \selector volumeRelativePath
    [[nodiscard]] std::optional<QString> volumeRelativePath();
    /// The path's; null when nothing exists. \selector volumeInfo
    [[nodiscard]] virtual std::shared_ptr<JNVolumeInfo> volumeInfo();
    [[nodiscard]] QString description() const;        ///< the path. \selector description
    [[nodiscard]] QString logDescription() const;     ///< "file name.txt". \selector logDescription
    [[nodiscard]] QString logFullDescription() const; ///< "file /folder/name.txt". \selector logFullDescription
    /// The word for its kind. \selector logTypeDescription
    [[nodiscard]] virtual QString logTypeDescription() const;

    // ---- kind

    [[nodiscard]] ItemType type() const noexcept override { return m_vtype; } ///< \selector type
    [[nodiscard]] bool isDirectory() const noexcept override
    {
        return m_vtype == ItemType::Directory;
    } ///< \selector isDirectory
    [[nodiscard]] bool isRegularFile() const noexcept override
    {
        return m_vtype == ItemType::RegularFile;
    } ///< \selector isRegularFile
    [[nodiscard]] bool isSymbolicLink() const noexcept override
    {
        return m_vtype == ItemType::SymbolicLink;
    } ///< \selector isSymbolicLink
    /// A file, directory or link. \selector isPersistentObject
    [[nodiscard]] bool isPersistentObject() const noexcept override;
    /// The receiver when it is of that class (a link is), else null. \selector asRegularFile
    [[nodiscard]] virtual std::shared_ptr<JNRegularFile> asRegularFile();
    [[nodiscard]] virtual std::shared_ptr<JNSymbolicLink> asSymbolicLink(); ///< \selector asSymbolicLink
    [[nodiscard]] virtual std::shared_ptr<JNDirectory> asDirectory();       ///< \selector asDirectory
    [[nodiscard]] virtual bool exists() const noexcept;                     ///< \selector exists
    /// The receiver while the kind of the item is unchanged, else a new object. Blocks on the disk.
    /// \selector reevaluateType
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] JNFileInfoPtr reevaluateType();
    /// The information of the path's hardenedReal; the receiver when it has that path already. Blocks on the disk.
    /// \selector hardened
    [[nodiscard]] JNFileInfoPtr hardened();
    [[nodiscard]] bool isEqual(const JNFileInfo& other) const; ///< the paths have equal bytes. \selector isEqual:

    // ---- neighbours

    /// The information of the folder that this item was listed in, while it lives. \selector livingParent
    [[nodiscard]] std::shared_ptr<JNDirectory> livingParent() const HAVREL_EXCLUDES(m_attrLock);
    /// livingParent(), else a look at the folder of the path; null at the root. \selector parentDirectoryInfo
    [[nodiscard]] virtual std::shared_ptr<JNDirectory> parentDirectoryInfo() const;
    [[nodiscard]] JNFileInfoPtr nextObj() const HAVREL_EXCLUDES(m_attrLock); ///< null after the last. \selector nextObj
    [[nodiscard]] JNFileInfoPtr nextContentFile() const;              ///< file or link. \selector nextContentFile
    [[nodiscard]] JNFileInfoPtr nextRegularFile() const;              ///< \selector nextRegularFile
    [[nodiscard]] std::shared_ptr<JNDirectory> nextDirectory() const; ///< \selector nextDirectory
    /// Whether cName() is exactly that, without making a copy of it.
    [[nodiscard]] bool hasCName(const QByteArray& name) const HAVREL_EXCLUDES(m_attrLock);
    /// finderLikeCompare of the names. \selector compareNames:
    [[nodiscard]] std::strong_ordering compareNames(const JNFileInfo& other) const;

    [[nodiscard]] JNAbstractFilePtr nextAbstractObj() const override;            ///< \selector nextAbstractObj
    [[nodiscard]] JNAbstractFilePtr nextAbstractContentFile() const override;    ///< \selector nextAbstractContentFile
    [[nodiscard]] JNAbstractFilePtr nextAbstractRegularFile() const override;    ///< \selector nextAbstractRegularFile
    [[nodiscard]] JNAbstractDirectoryPtr nextAbstractDirectory() const override; ///< \selector nextAbstractDirectory
    [[nodiscard]] JNAbstractDirectoryPtr abstractParent() const override;        ///< \selector abstractParent

    // ---- attributes

    /// All of them, fetched unless they are known. \selector attrs
    [[nodiscard]] platform::ItemStatus attrs() const HAVREL_EXCLUDES(m_attrLock);
    /// Forgets them, changes that were not written included. \selector flushAttributes
    virtual void flushAttributes() HAVREL_EXCLUDES(m_attrLock);
    /// Writes those that were changed. \throws HVException as setCommonAttributes \selector setModifiedAttributes
    void setModifiedAttributes() HAVREL_EXCLUDES(m_attrLock);
    /// Writes those whose bits (ATTR_CMN_...) are in \p mask and can be set anywhere; nothing where none are known.
    ///
    /// \selector setCommonAttributes:
    /// \throws HVException "IO" "unable to set attributes" (detail "attributeSet"); what was changed stays marked as
    ///         such. ENOTSUP for what this system cannot set: the creation and attribute-changed times, the script.
    void setCommonAttributes(std::uint32_t mask) HAVREL_EXCLUDES(m_attrLock);

    /// 0 unless it was set. \selector script
    [[nodiscard]] std::uint32_t script() const HAVREL_EXCLUDES(m_attrLock);
    void setScript(std::uint32_t script); ///< \selector setScript:
    /// The epoch where the file system keeps none. \selector createdTimeSpec
    [[nodiscard]] timespec createdTimeSpec() const;
    void setCreatedTimeSpec(const timespec& time);                       ///< \selector setCreatedTimeSpec:
    [[nodiscard]] timespec modifiedTimeSpec() const;                     ///< \selector modifiedTimeSpec
    void setModifiedTimeSpec(const timespec& time);                      ///< \selector setModifiedTimeSpec:
    [[nodiscard]] timespec attributeChangedTimeSpec() const;             ///< \selector attributeChangedTimeSpec
    void setAttributeChangedTimeSpec(const timespec& time);              ///< \selector setAttributeChangedTimeSpec:
    [[nodiscard]] std::optional<Timestamp> createdDate() const;          ///< none of no item. \selector createdDate
    [[nodiscard]] std::optional<Timestamp> modifiedDate() const;         ///< \selector modifiedDate
    [[nodiscard]] std::optional<Timestamp> attributeChangedDate() const; ///< \selector attributeChangedDate
    [[nodiscard]] std::uint32_t ownerID() const;                         ///< \selector ownerID
    void setOwnerID(std::uint32_t owner);                                ///< \selector setOwnerID:
    [[nodiscard]] std::uint32_t groupID() const;                         ///< \selector groupID
    void setGroupID(std::uint32_t group);                                ///< \selector setGroupID:
    /// Flags of the inode, see platform/item_status.h. \selector fileFlags
    [[nodiscard]] std::uint32_t fileFlags() const;
    void setFileFlags(std::uint32_t flags); ///< \selector setFileFlags:
    /// Permissions, set-id and sticky bits. \selector access
    [[nodiscard]] std::uint16_t access() const;
    void setAccess(std::uint16_t access); ///< other bits do not count. \selector setAccess:
    /// What this process may do with it: R_OK, W_OK, X_OK. Asked of the kernel once, when it is first asked for.
    /// \selector effectiveAccess
    [[nodiscard]] std::uint16_t effectiveAccess() const HAVREL_EXCLUDES(m_attrLock);
    [[nodiscard]] std::uint64_t localIdentifier() const;   ///< the inode's number. \selector localIdentifier
    [[nodiscard]] virtual std::uint64_t deviceID() const;  ///< as st_dev. \selector deviceID
    [[nodiscard]] virtual std::uint32_t linkCount() const; ///< 1, except of files. \selector linkCount
    [[nodiscard]] bool isHardLink() const;                 ///< it has two names or more. \selector isHardLink
    /// The access list of the item itself, read once; null when it has none, as links. \selector acl
    [[nodiscard]] std::shared_ptr<const platform::AccessList> acl() const HAVREL_EXCLUDES(m_attrLock);

    // ---- resource values: failures are logged at Debug and answer false or nothing. Block on the disk.

    /// See platform/item_marks.h. \selector isHidden
    [[nodiscard]] bool isHidden() const;
    /// Never: this system has no hidden extensions. \selector isHiddenExtension
    [[nodiscard]] bool isHiddenExtension() const;
    /// See platform/item_marks.h. \selector isExcludedFromBackup
    [[nodiscard]] bool isExcludedFromBackup() const;
    /// Never: nothing here is kept elsewhere by the system. \selector isUbiquitousItem
    [[nodiscard]] bool isUbiquitousItem() const noexcept { return false; }
    /// The device that the item itself lies on. \selector volumeIdentifier
    [[nodiscard]] std::optional<std::uint64_t> volumeIdentifier() const;

    // ---- whole items: the path's operations with the same names, and their exceptions

    /// The receiver then has the new path. \selector moveToDirectory:withName:overwriting:
    void moveToDirectory(const std::optional<QString>& directory,
                         const std::optional<QString>& name,
                         Overwriting overwriting);
    void moveTo(const QString& target, Overwriting overwriting); ///< \selector moveTo:overwriting:
    /// Answers the information of the copy. \selector copyToDirectory:withName:overwriting:
    /// \selector copyToDirectory:withName:overwriting:clone:
    [[nodiscard]] JNFileInfoPtr copyToDirectory(const std::optional<QString>& directory,
                                                const std::optional<QString>& name,
                                                Overwriting overwriting,
                                                Cloning cloning = Cloning::Yes) const;
    /// \selector copyTo:overwriting:
    /// \selector copyTo:overwriting:clone:
    [[nodiscard]] JNFileInfoPtr
    copyTo(const QString& target, Overwriting overwriting, Cloning cloning = Cloning::Yes) const;
    bool tryToDeleteFile() const; ///< \selector tryToDeleteFile
    /// Answers what stands for nothing at the same path. \selector deleteFile
    JNFileInfoPtr deleteFile() const; // NOLINT(modernize-use-nodiscard): done for what it does
    /// Answers the information of what is at the other path now. \selector swapWith:
    JNFileInfoPtr swapWith(const JNFileInfo& other) const; // NOLINT(modernize-use-nodiscard): done for what it does

protected:
    /// Fetches the attributes unless they are known. \return 0 or an errno value. \selector getCommonAttrs
    [[nodiscard]] virtual int getCommonAttrs() const HAVREL_REQUIRES(m_attrLock);
    /// Throws "failed to get attributes" unless \p error is 0.
    void requireAttributes(int error) const;
    [[nodiscard]] bool lacks(std::uint8_t flag) const HAVREL_REQUIRES(m_attrLock);

    mutable UnfairLock m_attrLock; // of everything that changes; no call that takes another information's lock under it

private:
    friend class EntryList;

    enum Flag : std::uint8_t { HasAttributes = 1, HasAccessList = 2, HasEffectiveAccess = 4 };

    [[nodiscard]] QByteArray cPath_nonblocking() const HAVREL_REQUIRES(m_attrLock);
    /// Changes an attribute where there is an item, and marks it as changed.
    void change(std::uint32_t bit, const std::function<void(platform::ItemStatus&)>& set) HAVREL_EXCLUDES(m_attrLock);
    void changeTime(std::uint32_t bit, platform::ItemTime which, const timespec& time);
    [[nodiscard]] std::optional<Timestamp> dateOf(platform::ItemTime which) const;
    void setNext(JNFileInfoPtr next) HAVREL_EXCLUDES(m_attrLock);

    // An entry of a folder has the path of its folder and a name until its own path is asked for: a path takes more
    // room than all the rest.
    mutable std::shared_ptr<JNPath> m_pathObj HAVREL_GUARDED_BY(m_attrLock);
    mutable std::unique_ptr<char[]> m_entryName HAVREL_GUARDED_BY(m_attrLock); // NOLINT(modernize-avoid-c-arrays)
    JNFileInfoPtr m_next HAVREL_GUARDED_BY(m_attrLock);
    mutable platform::ItemStatus m_attrs HAVREL_GUARDED_BY(m_attrLock);
    mutable std::shared_ptr<const platform::AccessList> m_acl HAVREL_GUARDED_BY(m_attrLock);
    mutable std::uint32_t m_dirty HAVREL_GUARDED_BY(m_attrLock) = 0; // bits of the attributes that are to be written
    std::uint32_t m_script HAVREL_GUARDED_BY(m_attrLock) = 0;
    mutable std::uint16_t m_effectiveAccess HAVREL_GUARDED_BY(m_attrLock) = 0;
    mutable std::uint8_t m_flags HAVREL_GUARDED_BY(m_attrLock) = 0; // of Flag
    const ItemType m_vtype;
};

} // namespace havrel
