// SPDX-License-Identifier: MIT
#pragma once

#include "platform/folder_reader.h"

#include <QByteArray>

#include <memory>
#include <span>

namespace havrel::platform {

/// A folder while a walk visits it.
///
/// Threads: one thread at a time.
class WalkedFolder
{
public:
    WalkedFolder(const QByteArray& path, int descriptor, std::span<const WalkedItem> items);

    /// The root as it was given, with the names below it.
    [[nodiscard]] const QByteArray& path() const noexcept { return m_path; }
    [[nodiscard]] QByteArray pathOf(const WalkedItem& item) const;

    /// Everything in the folder but subfolders, in the order of the inodes, which is the order that disks read fastest.
    [[nodiscard]] std::span<const WalkedItem> items() const noexcept { return m_items; }

    /// A short path that reaches the folder itself, or an item of it, however deep it lies and whatever becomes of the
    /// names above it. Valid during the visit, in this process.
    [[nodiscard]] QByteArray reach() const;
    [[nodiscard]] QByteArray reachOf(const WalkedItem& item) const;

private:
    const QByteArray& m_path;
    QByteArray m_prefix;
    std::span<const WalkedItem> m_items;
};

/// What a walk tells of. Folders come before what is in them; the subfolders of a folder come in the order of their
/// names' bytes.
class WalkVisitor
{
public:
    WalkVisitor() = default;
    virtual ~WalkVisitor() = default;
    WalkVisitor(const WalkVisitor&) = delete;
    WalkVisitor& operator=(const WalkVisitor&) = delete;
    WalkVisitor(WalkVisitor&&) = delete;
    WalkVisitor& operator=(WalkVisitor&&) = delete;

    virtual void visit(const WalkedFolder& folder) = 0;
    /// A folder that could not be opened (ENOENT: it vanished meanwhile), read, or returned to (ESTALE: it was moved,
    /// and what is left of it is not visited); the walk goes on with the next one.
    virtual void failed(const QByteArray& path, int error) = 0;
};

/// Whether a walk enters folders on which another file system is mounted.
enum class CrossFileSystems { No, Yes };

/// Walks a folder and everything below it. Never follows a link, needs neither stack nor descriptors in proportion to
/// the depth, and takes trees whose paths are longer than the kernel's limit.
///
/// Threads: one thread at a time.
class DirectoryWalk
{
public:
    DirectoryWalk(WalkVisitor& visitor, CrossFileSystems cross);
    ~DirectoryWalk();
    DirectoryWalk(const DirectoryWalk&) = delete;
    DirectoryWalk& operator=(const DirectoryWalk&) = delete;
    DirectoryWalk(DirectoryWalk&&) = delete;
    DirectoryWalk& operator=(DirectoryWalk&&) = delete;

    /// Visits \p root and all below it; blocks until done.
    ///
    /// \return 0, or the errno value why \p root could not be opened: ENOTDIR when it is a link or no folder. Failures
    ///         below the root go to the visitor.
    [[nodiscard]] int walk(const QByteArray& root);

    /// How much of the running walk is done, 0 to 1, never falling: each folder divides its share evenly among itself
    /// and its subfolders.
    [[nodiscard]] double progress() const noexcept;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace havrel::platform
