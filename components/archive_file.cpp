// SPDX-License-Identifier: MIT
#include "components/archive_file.h"

#include "components/stored_bytes.h"
#include "diagnostics/exception.h"
#include "foundation/property_list.h"
#include "platform/file_contents.h"
#include "platform/file_names.h"
#include "platform/items.h"
#include "platform/random.h"
#include "platform/replaced_file.h"

#include <QRegularExpression>

#include <cerrno>

namespace havrel {
namespace {

constexpr qlonglong kVersion = 1;
constexpr qsizetype kLongest = qsizetype{1024} * 1024; // bytes of an archive file; they have about 700

constexpr QLatin1StringView kVersionKey{"version"};
constexpr QLatin1StringView kEngineKey{"engine"};
constexpr QLatin1StringView kRepositoryKey{"repository"};
constexpr QLatin1StringView kIdentifierKey{"identifier"};
constexpr QLatin1StringView kMadeKey{"made"};
constexpr QLatin1StringView kKeyKey{"key"};
constexpr QLatin1StringView kKindKey{"kind"};
constexpr QLatin1StringView kCommandKey{"command"};
constexpr QLatin1StringView kFileKind{"file"};

/// Takes the values out of a dictionary one by one. The first one that is not as it has to be is the fault.
class Fields
{
public:
    explicit Fields(QVariantMap fields)
        : m_fields(std::move(fields))
    {
    }

    template<class Value>
    Value take(QLatin1StringView key, const char* kind)
    {
        const QVariant value = m_fields.take(key);
        if (value.metaType() == QMetaType::fromType<Value>())
            return value.value<Value>();
        blame(value, key, QLatin1StringView(kind));
        return {};
    }
    QByteArray takeBytes(QLatin1StringView key)
    {
        const QVariant value = m_fields.take(key);
        const std::optional<QByteArray> bytes = bytesOfStored(value);
        if (!bytes)
            blame(value, key, QLatin1StringView("text or data"));
        return bytes.value_or(QByteArray());
    }
    void require(bool holds, const QString& otherwise)
    {
        if (!holds)
            blame(otherwise);
    }

    [[nodiscard]] bool isEmpty() const { return m_fields.isEmpty(); }
    [[nodiscard]] const QVariantMap& rest() const { return m_fields; }
    [[nodiscard]] const QString& fault() const { return m_fault; }

private:
    void blame(const QVariant& value, QLatin1StringView key, QLatin1StringView kind)
    {
        blame(value.isValid() ? QStringLiteral("\"%1\" is not %2").arg(key, kind)
                              : QStringLiteral("\"%1\" is missing").arg(key));
    }
    void blame(const QString& fault)
    {
        if (m_fault.isNull())
            m_fault = fault;
    }

    QVariantMap m_fields;
    QString m_fault;
};

bool isIdentifier(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("\\A[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\z"));
    return form.match(text).hasMatch();
}

ArchiveKeySource takeKey(Fields& fields)
{
    Fields key(fields.take<QVariantMap>(kKeyKey, "a dictionary"));
    ArchiveKeySource source;
    const auto kind = key.take<QString>(kKindKey, "text");
    if (kind == kCommandKey) {
        source.command = key.take<QString>(kCommandKey, "text");
        key.require(!source.command.trimmed().isEmpty(), QStringLiteral("\"command\" is empty"));
    } else {
        key.require(kind == kFileKind,
                    QStringLiteral("\"kind\" is \"%1\", neither \"file\" nor \"command\"").arg(kind));
    }
    source.rest = key.rest();
    fields.require(key.fault().isNull(), QStringLiteral("in \"key\", %1").arg(key.fault()));
    return source;
}

QString faultOfVersion(qlonglong version)
{
    return version > kVersion ? QStringLiteral("a newer version of Havrel has made it (%1)").arg(version)
                              : QStringLiteral("there is no version %1").arg(version);
}

ArchiveFileReading readingOf(Fields fields)
{
    const auto version = fields.take<qlonglong>(kVersionKey, "a number");
    fields.require(version == kVersion, faultOfVersion(version));
    ArchiveFile archive;
    archive.engine = fields.take<QString>(kEngineKey, "text");
    fields.require(!archive.engine.isEmpty(), QStringLiteral("\"engine\" is empty"));
    archive.repository = fields.takeBytes(kRepositoryKey);
    fields.require(!archive.repository.isEmpty(), QStringLiteral("\"repository\" is empty"));
    fields.require(!archive.repository.contains('\0'), QStringLiteral("\"repository\" holds a NUL"));
    archive.identifier = fields.take<QString>(kIdentifierKey, "text");
    fields.require(isIdentifier(archive.identifier), QStringLiteral("\"identifier\" has not the form of one"));
    archive.made = fields.take<QDateTime>(kMadeKey, "a date");
    archive.key = takeKey(fields);
    archive.rest = fields.rest();
    return fields.fault().isNull() ? ArchiveFileReading{archive, {}} : ArchiveFileReading{{}, fields.fault()};
}

QVariantMap storedKey(const ArchiveKeySource& key)
{
    QVariantMap stored = key.rest;
    stored.insert(kKindKey, key.command.isEmpty() ? QString(kFileKind) : QString(kCommandKey));
    if (!key.command.isEmpty())
        stored.insert(kCommandKey, key.command);
    return stored;
}

QString freshIdentifier()
{
    QString digits;
    for (int i = 0; i < 4; ++i)
        digits += QStringLiteral("%1").arg(platform::random32(), 8, 16, QLatin1Char('0'));
    for (const qsizetype at : {20, 16, 12, 8})
        digits.insert(at, QLatin1Char('-'));
    return digits;
}

HVException failure(const QString& reason, const QByteArray& path)
{
    return HVException::exceptionWithName(kArchiveException, reason).setStrPath(platform::textOfFileName(path));
}

} // namespace

ArchiveFileReading parseArchiveFile(const QByteArray& bytes)
{
    const PropertyListReading list = parsePropertyList(bytes);
    if (list.error)
        return {{}, list.error->localizedDescription()};
    if (list.value.metaType() != QMetaType::fromType<QVariantMap>())
        return {{}, QStringLiteral("it is a property list, but not a dictionary")};
    return readingOf(Fields(list.value.toMap()));
}

QByteArray bytesOfArchiveFile(const ArchiveFile& archive)
{
    QVariantMap stored = archive.rest;
    stored.insert(kVersionKey, kVersion);
    stored.insert(kEngineKey, archive.engine);
    stored.insert(kRepositoryKey, storedBytes(archive.repository));
    stored.insert(kIdentifierKey, archive.identifier);
    stored.insert(kMadeKey, archive.made);
    stored.insert(kKeyKey, storedKey(archive.key));
    PropertyListWriting writing = xmlPropertyList(stored);
    if (writing.error)
        HVException::error(*writing.error, kArchiveException, QStringLiteral("cannot write archive file")).raise();
    return writing.bytes;
}

ArchiveFile ArchiveFile::of(const QString& engine, const QByteArray& repository, const QString& keyCommand)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    return {.engine = engine,
            .repository = repository,
            .identifier = freshIdentifier(),
            .made = QDateTime::fromSecsSinceEpoch(now, Qt::UTC),
            .key = {.command = keyCommand, .rest = {}},
            .rest = {}};
}

ArchiveFile ArchiveFile::readFrom(const QByteArray& path)
{
    const platform::FileContents contents = platform::readFile(path, kLongest);
    if (contents.error == EFBIG)
        failure(QStringLiteral("this is no archive: it is too long"), path).raise();
    if (contents.error != 0)
        failure(QStringLiteral("cannot read the archive file: %1").arg(systemErrorText(contents.error)), path)
            .setPOSIXErr(contents.error)
            .raise();
    ArchiveFileReading reading = parseArchiveFile(contents.bytes);
    if (!reading.fault.isNull())
        failure(QStringLiteral("this is no archive: %1").arg(reading.fault), path).raise();
    return std::move(reading.archive);
}

void ArchiveFile::writeTo(const QByteArray& path) const
{
    constexpr mode_t kOwnerAlone = 0600;
    int error = platform::findName(path) == 0 ? EEXIST : 0;
    if (error == 0)
        error = platform::replaceFile(path, bytesOfArchiveFile(*this), kOwnerAlone);
    if (error != 0)
        failure(QStringLiteral("cannot make the archive file: %1").arg(systemErrorText(error)), path)
            .setPOSIXErr(error)
            .raise();
}

QByteArray shownPlace(const QByteArray& place)
{
    const qsizetype host = place.indexOf("://") + 3;
    const qsizetype at = host < 3 ? -1 : place.left(place.indexOf('/', host)).lastIndexOf('@');
    const qsizetype colon = at < 0 ? -1 : place.indexOf(':', host);
    return colon < 0 || colon > at ? place : place.left(colon + 1) + "***" + place.mid(at);
}

} // namespace havrel
