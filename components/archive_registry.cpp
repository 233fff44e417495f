// SPDX-License-Identifier: MIT
#include "components/archive_registry.h"

#include "components/archive_file.h"
#include "components/data_folder.h"
#include "components/item_names.h"
#include "components/stored_bytes.h"
#include "diagnostics/exception.h"
#include "foundation/property_list.h"
#include "platform/file_contents.h"
#include "platform/file_names.h"
#include "platform/replaced_file.h"

#include <QDir>
#include <QSet>

#include <algorithm>

namespace havrel {
namespace {

constexpr QLatin1StringView kPathKey{"path"};
constexpr QLatin1StringView kLastCaptureKey{"captured"};
constexpr QLatin1StringView kItemsKey{"items"};
constexpr QLatin1StringView kSuffix{".plist"};
constexpr qsizetype kLongest = qsizetype{64} * 1024 * 1024; // bytes

std::optional<KnownArchive> knownFrom(const QByteArray& bytes, const QString& identifier)
{
    const QVariantMap stored = parsePropertyList(bytes).value.toMap();
    const std::optional<QByteArray> path = bytesOfStored(stored.value(kPathKey));
    if (!path)
        return std::nullopt;
    KnownArchive known{*path, identifier, stored.value(kLastCaptureKey).toDateTime(), {}};
    for (const QVariant& each : stored.value(kItemsKey).toList())
        if (const std::optional<QByteArray> item = bytesOfStored(each))
            known.items.append(*item);
    return known;
}

QByteArray storedFrom(const KnownArchive& known)
{
    QVariantList items;
    for (const QByteArray& each : known.items)
        items.append(storedBytes(each));
    QVariantMap stored{{kPathKey, storedBytes(known.path)}, {kItemsKey, items}};
    if (known.lastCapture.isValid())
        stored.insert(kLastCaptureKey, known.lastCapture);
    return xmlPropertyList(stored).bytes;
}

bool comesBefore(const KnownArchive& left, const KnownArchive& right)
{
    if (left.lastCapture != right.lastCapture)
        return !right.lastCapture.isValid() || left.lastCapture > right.lastCapture;
    return left.path < right.path;
}

QByteArrayList together(const QByteArrayList& known, const QByteArrayList& added)
{
    QSet<QByteArray> all(known.begin(), known.end());
    for (const QByteArray& each : added)
        all.insert(each);
    QByteArrayList items(all.begin(), all.end());
    std::sort(items.begin(), items.end());
    return items;
}

} // namespace

bool KnownArchive::holds(const QByteArray& item) const
{
    return std::any_of(items.begin(), items.end(), [&item](const QByteArray& each) { return isAtOrBelow(item, each); });
}

ArchiveRegistry::ArchiveRegistry()
    : ArchiveRegistry(dataFolder() + "/archives")
{
}

ArchiveRegistry::ArchiveRegistry(QByteArray folder)
    : m_folder(std::move(folder))
{
}

QByteArray ArchiveRegistry::fileOf(const QString& identifier) const
{
    return m_folder + '/' + identifier.toLatin1() + QByteArray(kSuffix.data(), kSuffix.size());
}

QList<KnownArchive> ArchiveRegistry::archives() const
{
    QList<KnownArchive> all;
    const QDir folder(platform::textOfFileName(m_folder));
    for (const QString& each : folder.entryList({QLatin1Char('*') + kSuffix}, QDir::Files)) {
        const QString identifier = each.chopped(kSuffix.size());
        if (std::optional<KnownArchive> known =
                knownFrom(platform::readFile(fileOf(identifier), kLongest).bytes, identifier))
            all.append(std::move(*known));
    }
    std::sort(all.begin(), all.end(), comesBefore);
    return all;
}

void ArchiveRegistry::note(const ArchiveFile& archive, const QByteArray& path) const
{
    noteCapture(archive, path, {}, {});
}

void ArchiveRegistry::noteCapture(const ArchiveFile& archive,
                                  const QByteArray& path,
                                  const QByteArrayList& items,
                                  const QDateTime& date) const
{
    const QByteArray before = platform::readFile(fileOf(archive.identifier), kLongest).bytes;
    KnownArchive known = knownFrom(before, archive.identifier).value_or(KnownArchive{{}, archive.identifier, {}, {}});
    known.path = path;
    known.items = together(known.items, items);
    if (date.isValid())
        known.lastCapture = QDateTime::fromSecsSinceEpoch(date.toSecsSinceEpoch(), Qt::UTC);
    keep(known);
}

void ArchiveRegistry::keep(const KnownArchive& known) const
{
    constexpr mode_t kFolderOfOwnerAlone = 0700;
    constexpr mode_t kFileOfOwnerAlone = 0600;
    int error = platform::makeFolders(m_folder, kFolderOfOwnerAlone);
    if (error == 0)
        error = platform::replaceFile(fileOf(known.identifier), storedFrom(known), kFileOfOwnerAlone);
    if (error != 0)
        HVException::errnoWithName(error, kArchiveException, QStringLiteral("cannot keep that the archive is known"))
            .setStrPath(platform::textOfFileName(m_folder))
            .raise();
}

} // namespace havrel
