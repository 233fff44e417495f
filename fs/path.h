// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "fs/abstract_path.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <compare>
#include <memory>
#include <optional>
#include <vector>

namespace havrel {

class Decoder;
class Encoder;
class JNDirectory;
class JNFileInfo;
class JNPath;
class JNVolumeInfo;
using JNPathPtr = std::shared_ptr<JNPath>;

/// What becomes of an item that already has the target's name.
enum class Overwriting { No, Yes };

/// Whether a copy may share its blocks with the original. Accepted and ignored: every copy shares them where the file
/// system can.
enum class Cloning { No, Yes };

/// A location in the file system, kept as the bytes that the kernel uses.
///
/// Names nothing that must exist and holds no descriptor. Equality is equality of the bytes: "/a/" and "/a" differ.
/// Making one does byte-string work only; text and URL are made when they are first asked for, and kept. Bytes that
/// are not UTF-8 survive every way to text or URL and back. A path with a NUL byte inside names nothing: it does not
/// exist, and every operation on it fails with EINVAL.
///
/// Operations on items throw HVException "IO" with the path attached and leave this object as it is.
///
/// Threads: any thread.
class JNPath : public JNAbstractPath, public std::enable_shared_from_this<JNPath>
{
protected:
    struct Token
    {
        explicit Token() = default;
    };

public:
    JNPath(Token token, QByteArray name, QByteArray path);
    ~JNPath() override;
    JNPath(const JNPath&) = delete;
    JNPath& operator=(const JNPath&) = delete;
    JNPath(JNPath&&) = delete;
    JNPath& operator=(JNPath&&) = delete;

    /// Keeps \p path as it is, without normalising it. \selector initWithCPath:
    [[nodiscard]] static JNPathPtr withCPath(QByteArray path);
    /// The path of a text, which is kept. \selector initWithPath:
    [[nodiscard]] static JNPathPtr withPath(const QString& path);
    /// The path of a file URL, which is kept; without the trailing slash of a folder's URL. Null when \p url is invalid
    /// or of another scheme than "file". The host does not count.
    ///
    /// \selector initWithURL:
    [[nodiscard]] static JNPathPtr withURL(const QUrl& url);
    /// \p parent's path, one "/" unless it ends in one, and \p name; the empty parent gives "/name".
    /// \selector initWithCName:parentPath:
    [[nodiscard]] static JNPathPtr withCName(QByteArray name, const JNPath& parentPath);
    /// \p path seen from \p base: \p base itself when empty; joined to it and resolved on the disk when it begins with
    /// "." (hidden names too), kept as joined when that fails; \p path alone when absolute; else joined. May block.
    ///
    /// \selector initWithCPath:relativeToPath:
    [[nodiscard]] static JNPathPtr withCPath(const QByteArray& path, const JNPathPtr& base);
    /// A plain path with everything that \p other holds, made forms included. \selector initWithPathObject:
    [[nodiscard]] static JNPathPtr withPathObject(const JNPath& other);
    /// Takes both as they are; the name need not be the path's last component. \selector initAssumingName:path:
    [[nodiscard]] static JNPathPtr assumingName(QByteArray name, QByteArray path);
    /// Null when the archive holds no path. \selector initWithCoder:
    [[nodiscard]] static JNPathPtr withCoder(Decoder& decoder);

    [[nodiscard]] static JNPathPtr pathWithPath(const QString& path); ///< \selector +pathWithPath:
    [[nodiscard]] static JNPathPtr pathWithURL(const QUrl& url);      ///< null as withURL. \selector +pathWithURL:
    /// pathWithPath and real(); may block. \selector +realPath:
    [[nodiscard]] static JNPathPtr realPath(const QString& path);
    /// One path for each text or file URL, in order; anything else is left out. \selector +arrayFromPathsOrURLs:
    [[nodiscard]] static std::vector<JNPathPtr> arrayFromPathsOrURLs(const QVariantList& pathsOrURLs);
    /// The folder for temporary items, links resolved; found once. \selector +tempPath
    [[nodiscard]] static JNPathPtr tempPath();
    /// A name in tempPath() that no item has, "prefix-0123abcd.extension"; nothing is made.
    /// \selector +tempPathWithPrefix:extension:
    [[nodiscard]] static JNPathPtr tempPathWithPrefix(const QString& prefix, const QString& extension);

    /// An object of the same class with the same fields. \selector copyWithZone:
    [[nodiscard]] virtual JNPathPtr copy() const;

    /// The whole path. \selector cPath
    [[nodiscard]] QByteArray cPath() const override HAVREL_EXCLUDES(m_pathLock);
    /// The last component, as basename(3) has it: trailing slashes ignored, "/" for the root, "." for "".
    /// \selector cName
    [[nodiscard]] const QByteArray& cName() const noexcept override { return m_cName; }
    [[nodiscard]] QString name() const override HAVREL_EXCLUDES(m_pathLock); ///< cName() as text. \selector name
    [[nodiscard]] QString path() const override HAVREL_EXCLUDES(m_pathLock); ///< cPath() as text. \selector path
    /// The file URL, other bytes than the plain ones of URLs percent-encoded. \selector url
    [[nodiscard]] QUrl url() const override HAVREL_EXCLUDES(m_pathLock);
    /// What follows the last "." of the name, unless that is its first character. \selector extension
    [[nodiscard]] QString extension() const override;
    /// The name for people, which is name(); a missing item is logged at Debug. Looks at the disk.
    /// \selector displayName
    [[nodiscard]] QString displayName() const override;
    /// The folder, as dirname(3) has it: "/" for the root, "." for a name alone. \selector parent
    [[nodiscard]] virtual JNPathPtr parent() const;
    /// Forgets the URL; the next url() makes it anew. \selector flushInfo
    void flushInfo() HAVREL_EXCLUDES(m_pathLock);

    /// A plain path of the item \p name in this folder. \selector pathOfChild:
    [[nodiscard]] JNPathPtr pathOfChild(const QString& name) const;
    /// withCPath(path, this). \selector relativePath:
    [[nodiscard]] JNPathPtr relativePath(const QString& path);
    /// This path seen from \p base: "" for the same; the rest when it lies below; else the whole path.
    /// \selector pathRelativeToPath:
    [[nodiscard]] QString pathRelativeToPath(const JNPath& base) const;
    /// Whether \p other is this path or lies below it on the same volume. Judged by the texts, and by the devices of
    /// both items unless the texts are equal. \selector containsPath:
    [[nodiscard]] bool containsPath(const JNPath& other) const;

    /// The path without links, "." and ".."; the receiver when it is that already or cannot be resolved.
    /// \selector real
    [[nodiscard]] JNPathPtr real();
    /// As real(), but as the kernel sees the item once it is open; real() when that cannot be found out.
    /// \selector hardenedReal
    [[nodiscard]] JNPathPtr hardenedReal();
    /// Whether the item exists; a dangling link does not. \selector exists
    [[nodiscard]] bool exists() const;

    /// Bytes; 0 where the file system names no value. \source pathconf(3), _PC_REC_MIN_XFER_SIZE
    /// \selector minTransferSize
    [[nodiscard]] qint64 minTransferSize() const;
    /// Bytes; 0 where the file system names no value. \source pathconf(3), _PC_REC_MAX_XFER_SIZE
    /// \selector maxTransferSize
    [[nodiscard]] qint64 maxTransferSize() const;
    /// Bits of a file's size; 0 where the file system names no value. \source pathconf(3), _PC_FILESIZEBITS
    /// \selector fileSizeBits
    [[nodiscard]] qint64 fileSizeBits() const;

    /// What is known of the item: the directory information that stands for this path while there is one, else a new
    /// look at the disk. \throws HVException "IO" "failed to probe object vtype"
    /// \selector fileInfo
    [[nodiscard]] std::shared_ptr<JNFileInfo> fileInfo();
    /// fileInfo() of a directory; null for anything else. \selector directory
    [[nodiscard]] std::shared_ptr<JNDirectory> directory();
    /// The directory information that stands for this path, not kept alive by it. \selector directoryInfo
    [[nodiscard]] std::shared_ptr<JNDirectory> directoryInfo() const HAVREL_EXCLUDES(m_pathLock);
    /// \selector setDirectoryInfo:
    void setDirectoryInfo(const std::shared_ptr<JNDirectory>& info) HAVREL_EXCLUDES(m_pathLock);
    /// The same unless another one stands for this path. \return whether \p info does now.
    [[nodiscard]] bool registerDirectoryInfo(const std::shared_ptr<JNDirectory>& info) HAVREL_EXCLUDES(m_pathLock);
    /// The volume that the item lies on. \throws HVException "IO" "problem getting volume statfs"
    /// \selector volumeInfo
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> volumeInfo() const;

    /// moveTo() with the target joined from a folder (this item's when there is none given) and a name (this item's).
    /// \selector moveToDirectory:withName:overwriting:
    [[nodiscard]] JNPathPtr moveToDirectory(const std::optional<QString>& directory,
                                            const std::optional<QString>& name,
                                            Overwriting overwriting) const;
    /// Moves the item; blocks on the disk.
    ///
    /// \selector moveTo:overwriting:
    /// \param target      absolute, or relative to this item's folder; "." and ".." are resolved textually, "~" is a
    ///                    name like any other. The empty target is refused.
    /// \param overwriting Yes: one rename, which replaces an item of that name and cannot leave the volume; No: refuses
    ///                    a taken name (a dangling link too), and moves to another volume by copying and deleting.
    /// \return the path of the moved item; this object still names the old place.
    /// \throws HVException "IO": "cannot rename filesystem object" (detail "to") when overwriting, else "cannot move
    ///         item" (detail "target"). The item is then where it was; only when an item that was copied to another
    ///         volume cannot be deleted, the whole copy stays beside what is left of it.
    /// \source rename(2), renameat2(2) with RENAME_NOREPLACE.
    [[nodiscard]] JNPathPtr moveTo(const QString& target, Overwriting overwriting) const;

    /// copyTo() with the target joined as for moveToDirectory.
    /// \selector copyToDirectory:withName:overwriting:
    /// \selector copyToDirectory:withName:overwriting:clone:
    [[nodiscard]] JNPathPtr copyToDirectory(const std::optional<QString>& directory,
                                            const std::optional<QString>& name,
                                            Overwriting overwriting,
                                            Cloning cloning = Cloning::Yes) const;
    /// Copies the item with everything in it: links as links, modes, times, extended attributes, access lists, hard
    /// links inside the tree, holes; owners where permitted. Blocks on the disk.
    ///
    /// \selector copyTo:overwriting:
    /// \selector copyTo:overwriting:clone:
    /// \param target      as for moveTo.
    /// \param overwriting Yes: what has the target's name is removed first, folders with their contents.
    /// \return the path of the copy.
    /// \throws HVException "IO", detail "target": "cannot overwrite item" when the old item cannot be removed; "cannot
    ///         copy item" otherwise, and then nothing that this copy made is left. The copy onto itself, onto a folder
    ///         that holds it, into itself, and of an item that cannot be read are refused before anything is removed.
    [[nodiscard]] JNPathPtr
    copyTo(const QString& target, Overwriting overwriting, Cloning cloning = Cloning::Yes) const;

    /// Deletes the item, a folder with its contents; never follows links, never leaves the volume.
    /// \return whether all of it is gone; what could not be deleted stays. \selector tryToDeleteFile
    bool tryToDeleteFile() const;
    /// As tryToDeleteFile. \throws HVException "IO" "cannot delete item" \selector deleteFile
    void deleteFile() const;
    /// Exchanges two items, so that each name refers to what the other did. In one step where the volume can, else by
    /// three renames over a temporary name.
    ///
    /// \selector swapWith:
    /// \throws HVException "IO" "cannot exchange files" (detail "with"). When the second rename failed, the first is
    ///         undone; when the third failed, the other item has the temporary name ("_xchng_...") in this folder.
    /// \source renameat2(2) with RENAME_EXCHANGE
    void swapWith(const JNPath& other) const;
    /// Sets the times of access and modification to now, if it can. \selector touch
    void touch() const;

    [[nodiscard]] bool isEqual(const JNPath& other) const; ///< equal bytes. \selector isEqual:
    [[nodiscard]] bool isEqual(const QString& text) const; ///< equal to path().
    /// As the forms above for a path and a text; false for anything else.
    [[nodiscard]] bool isEqual(const QVariant& object) const;
    /// The hash of path(), also that of the equal text. \selector hash
    [[nodiscard]] std::size_t hash() const;
    /// The order of the two path() texts by UTF-16 units. \selector compare:
    [[nodiscard]] std::strong_ordering compare(const JNPath& other) const;
    /// As the form above for a path; less for anything else.
    [[nodiscard]] std::strong_ordering compare(const QVariant& object) const;
    /// Class, address and path, for logs. \selector description
    [[nodiscard]] QString description() const;

    /// The bytes and a NUL, under "path" when keyed. \selector encodeWithCoder:
    void encodeWithCoder(Encoder& encoder) const;
    /// The class's name in archives.
    [[nodiscard]] virtual QString className() const;

protected:
    /// The bytes in an archive, without their NUL; null when there are none.
    [[nodiscard]] static QByteArray decodedCPath(Decoder& decoder);

    /// cPath() for callers that hold the lock. \selector cPath_nonblocking
    [[nodiscard]] virtual const QByteArray& cPath_nonblocking() const HAVREL_REQUIRES(m_pathLock);
    [[nodiscard]] const QString& path_nonblocking() const HAVREL_REQUIRES(m_pathLock);
    /// Takes over what \p other has made of itself: bytes, name, path and URL.
    void shareForms(const JNPath& other);

    mutable Mutex m_pathLock;
    mutable QByteArray m_cPath HAVREL_GUARDED_BY(m_pathLock); // empty in a sub path until asked for

private:
    [[nodiscard]] JNPathPtr resolved(const QByteArray& realPath);
    /// Empty for the empty text.
    [[nodiscard]] QString absoluteTarget(const QString& target) const;
    [[nodiscard]] QString joinedTarget(const std::optional<QString>& directory,
                                       const std::optional<QString>& name) const;
    void renameOver(const QString& target) const;
    void moveWithoutReplacing(const QString& target) const;
    [[nodiscard]] QByteArray exchangeSibling() const;
    [[nodiscard]] int renameThreeTimes(const QByteArray& mine, const QByteArray& others) const;
    [[nodiscard]] bool swapAtOnce(const JNPath& other) const;

    const QByteArray m_cName;
    mutable QString m_name HAVREL_GUARDED_BY(m_pathLock); // null until asked for, like the next two
    mutable QString m_path HAVREL_GUARDED_BY(m_pathLock);
    mutable QUrl m_url HAVREL_GUARDED_BY(m_pathLock);
    std::weak_ptr<JNDirectory> m_directory HAVREL_GUARDED_BY(m_pathLock);
};

inline bool operator==(const JNPath& left, const JNPath& right)
{
    return left.isEqual(right);
}

} // namespace havrel

Q_DECLARE_METATYPE(havrel::JNPathPtr)
