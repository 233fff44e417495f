// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDateTime>
#include <QList>
#include <QString>

namespace havrel {

struct ArchiveFile;

/// An archive that this user has made or captured to.
struct KnownArchive
{
    QByteArray path; ///< of its archive file, absolute; it may not be there any more
    QString identifier;
    QDateTime lastCapture; ///< in UTC, to the second; null when nothing was captured yet
    QByteArrayList items;  ///< all that was ever captured into it from here: plain absolute paths, sorted

    /// Whether \p item, or what holds it, was captured into it. As quick as it is rough: nothing is looked up in the
    /// archive, so it may be that the item was not there then.
    [[nodiscard]] bool holds(const QByteArray& item) const;

    friend bool operator==(const KnownArchive&, const KnownArchive&) = default;
};

/// The archives that a user's programs know: a small property list for each, named after its identifier, in "archives"
/// below the product's data folder. Each is replaced as a whole, so that programs may use it at the same time; of two
/// that note a capture into the same archive in the same moment, one note may be lost until the next capture.
///
/// Threads: any thread.
class ArchiveRegistry
{
public:
    /// That of this user.
    ArchiveRegistry();
    explicit ArchiveRegistry(QByteArray folder);

    /// All of them, the one that was captured to last first, then by their paths. What cannot be read is passed over.
    [[nodiscard]] QList<KnownArchive> archives() const;

    /// Notes that the file at \p path is the archive \p archive. A path that was known before is replaced.
    /// \throws HVException "Archive" when that cannot be kept.
    void note(const ArchiveFile& archive, const QByteArray& path) const;
    /// Notes a capture of \p items into it, too.
    void noteCapture(const ArchiveFile& archive,
                     const QByteArray& path,
                     const QByteArrayList& items,
                     const QDateTime& date) const;

private:
    [[nodiscard]] QByteArray fileOf(const QString& identifier) const;
    void keep(const KnownArchive& known) const;

    QByteArray m_folder;
};

} // namespace havrel
