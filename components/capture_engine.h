// SPDX-License-Identifier: MIT
#pragma once

#include "platform/item_types.h"
#include "platform/proceed.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace havrel {

struct ArchiveFile;

/// How far a capture or a restore is.
struct EngineProgress
{
    double fraction = 0; ///< 0 to 1, by size; grows as more is found to do, so it may fall
    qint64 files = 0;    ///< found so far
    qint64 filesDone = 0;
    qint64 bytes = 0; ///< found so far
    qint64 bytesDone = 0;
    QStringList current; ///< names of what is being read, to be shown

    friend bool operator==(const EngineProgress&, const EngineProgress&) = default;
};

/// What could not be captured or restored, while the rest was. For people: a name whose bytes are not UTF-8 is shown
/// as well as the engine tells it.
struct EngineProblem
{
    QString item;
    QString reason;

    friend bool operator==(const EngineProblem&, const EngineProblem&) = default;
};

/// What a capture has done.
struct CaptureSummary
{
    QString capture; ///< its name in the archive, as in CaptureRecord
    qint64 filesNew = 0;
    qint64 filesChanged = 0;
    qint64 filesUnmodified = 0;
    qint64 bytesProcessed = 0;
    qint64 bytesAdded = 0; ///< to the repository, after compression and without what was there already
    QList<EngineProblem> problems;
};

/// One capture in an archive.
struct CaptureRecord
{
    QString id; ///< 64 hexadecimal digits
    QDateTime date;
    QByteArrayList items; ///< absolute paths, as they were asked for
    QString host;
    QString user;
};

/// An item in a capture.
struct CapturedItem
{
    QByteArray path; ///< absolute
    platform::ItemType type = platform::ItemType::None;
    qint64 size = 0;    ///< of a file, in bytes
    quint32 mode = 0;   ///< permissions
    QDateTime modified; ///< to the millisecond
};

using EngineProgressBlock = std::function<platform::Proceed(const EngineProgress& progress)>;
using CapturedItemBlock = std::function<void(const CapturedItem& item)>;

/// What keeps the contents of an archive. Every operation blocks until it is done and raises an HVException with the
/// name "Archive" when it cannot be done as a whole: its reason is a sentence, the detail "ErrDescription" the engine's
/// own words, and the detail "Fault" one word of EngineFault (engine_fault.h).
///
/// Item paths are bytes, absolute and plain (plainPath() of item_names.h).
///
/// Threads: any thread; several operations may run at once, as far as the repository allows.
class CaptureEngine
{
public:
    CaptureEngine() = default;
    virtual ~CaptureEngine() = default;
    CaptureEngine(const CaptureEngine&) = delete;
    CaptureEngine& operator=(const CaptureEngine&) = delete;
    CaptureEngine(CaptureEngine&&) = delete;
    CaptureEngine& operator=(CaptureEngine&&) = delete;

    /// Makes the repository; with a key that a command prints, takes one over that this key opens.
    virtual void makeRepository() = 0;

    /// Captures \p items with all that is in them. Items that are missing, vanish meanwhile or cannot be read become
    /// problems, unless nothing is left to capture. \p progress is called some times a second on this thread, whether
    /// or not there is any; when it answers Proceed::No, the capture is given up and raised about, and the archive is
    /// as before.
    virtual CaptureSummary capture(const QByteArrayList& items, const EngineProgressBlock& progress) = 0;

    /// All captures, the oldest first.
    [[nodiscard]] virtual QList<CaptureRecord> captures() = 0;

    /// Calls \p block for each item of a capture, folders before what is in them. With \p folders: only for these items
    /// and for what is directly in them, without an error for one that is not there.
    virtual void listItems(const QString& capture, const QByteArrayList& folders, const CapturedItemBlock& block) = 0;

    /// The newest capture that holds each item, by item; nothing for an item that none holds.
    [[nodiscard]] virtual QHash<QByteArray, CaptureRecord> newestHolding(const QByteArrayList& items) = 0;

    /// Brings items of a capture back into \p folder, which is made when it is missing: each under its own name, whole
    /// or not at all, and never over what has that name. An item that lies in another of \p items comes with that one.
    /// What cannot be brought back becomes a problem. Contents, names, links, hard links within an item, holes, modes
    /// and times come back exactly; owners and attributes as far as this user may set them.
    [[nodiscard]] virtual QList<EngineProblem>
    restore(const CaptureRecord& capture, const QByteArrayList& items, const QByteArray& folder) = 0;
};

/// The engine that keeps \p archive. \throws HVException "Archive" when this version knows none of its name.
///
/// Threads: any thread.
[[nodiscard]] std::unique_ptr<CaptureEngine> engineOf(const ArchiveFile& archive);

} // namespace havrel
