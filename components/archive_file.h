// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVariantMap>

namespace havrel {

/// The extension of archive files, without its dot.
inline constexpr QLatin1StringView kArchiveExtension{"zephra"};

/// The name of exceptions that archives and engines raise.
inline constexpr QLatin1StringView kArchiveException{"Archive"};

/// How the key of an archive's repository is got.
struct ArchiveKeySource
{
    QString command;  ///< prints the key, if this user has allowed it; empty: it is in a key file; see archive_key.h
    QVariantMap rest; ///< what else is stored beside, which this version does not know

    friend bool operator==(const ArchiveKeySource&, const ArchiveKeySource&) = default;
};

/// What an archive file says: a small XML property list that people can read, with the extension "zephra". It holds no
/// key, but whoever has it knows the place of the repository.
///
/// | key          | value                                                                      |
/// |--------------|----------------------------------------------------------------------------|
/// | "version"    | 1                                                                          |
/// | "engine"     | name of the engine that keeps the repository, "restic"                     |
/// | "repository" | string (data when it is no text): the place, as the engine understands it  |
/// | "identifier" | string: 32 lower-case hexadecimal digits in groups of 8, 4, 4, 4 and 12    |
/// | "made"       | date, to the second                                                        |
/// | "key"        | dictionary: "kind" is "file", or "command" with the string "command"       |
///
/// Other keys are kept.
///
/// Threads: const members any thread, others one at a time.
struct ArchiveFile
{
    QString engine;
    QByteArray repository;
    QString identifier;
    QDateTime made; ///< in UTC, without a fraction of a second
    ArchiveKeySource key;
    QVariantMap rest; ///< keys that this version does not know

    friend bool operator==(const ArchiveFile&, const ArchiveFile&) = default;

    /// A new archive: fresh identifier, made now.
    [[nodiscard]] static ArchiveFile of(const QString& engine, const QByteArray& repository, const QString& keyCommand);
    /// Reads the file at \p path. \throws HVException "Archive" that says what is wrong.
    [[nodiscard]] static ArchiveFile readFrom(const QByteArray& path);
    /// Writes a new file, readable by its owner alone. \throws HVException "Archive": a file of that name is there
    ///         already, or it cannot be written; nothing is left behind.
    void writeTo(const QByteArray& path) const;
};

/// What reading gave: an archive, or why there is none.
struct ArchiveFileReading
{
    ArchiveFile archive;
    QString fault; ///< a sentence without its first capital and last point; null when there is an archive
};

/// Takes the bytes of an archive file apart.
///
/// Threads: any thread.
[[nodiscard]] ArchiveFileReading parseArchiveFile(const QByteArray& bytes);

/// The bytes of an archive file.
///
/// Threads: any thread.
[[nodiscard]] QByteArray bytesOfArchiveFile(const ArchiveFile& archive);

/// \p place without the password of a URL in it, to be shown.
///
/// Threads: any thread.
[[nodiscard]] QByteArray shownPlace(const QByteArray& place);

} // namespace havrel
