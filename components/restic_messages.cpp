// SPDX-License-Identifier: MIT
#include "components/restic_messages.h"

#include "components/restic_texts.h"
#include "foundation/error.h"
#include "platform/file_names.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace havrel::restic {
namespace {

constexpr QByteArrayView kItemTag("item:");
constexpr QByteArrayView kLinkTag("link:");
constexpr QLatin1StringView kType("message_type");

QJsonObject objectOf(const QByteArray& line)
{
    return QJsonDocument::fromJson(line).object();
}

qint64 numberIn(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1StringView(key)).toInteger();
}

QString textIn(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1StringView(key)).toString();
}

EngineProgress progressOf(const QJsonObject& status)
{
    EngineProgress progress{.fraction =
                                std::clamp(status.value(QLatin1StringView("percent_done")).toDouble(), 0.0, 1.0),
                            .files = numberIn(status, "total_files"),
                            .filesDone = numberIn(status, "files_done"),
                            .bytes = numberIn(status, "total_bytes"),
                            .bytesDone = numberIn(status, "bytes_done"),
                            .current = {}};
    for (const QJsonValue& each : status.value(QLatin1StringView("current_files")).toArray())
        progress.current.append(each.toString());
    return progress;
}

CaptureSummary summaryOf(const QJsonObject& summary)
{
    return {.capture = textIn(summary, "snapshot_id"),
            .filesNew = numberIn(summary, "files_new"),
            .filesChanged = numberIn(summary, "files_changed"),
            .filesUnmodified = numberIn(summary, "files_unmodified"),
            .bytesProcessed = numberIn(summary, "total_bytes_processed"),
            .bytesAdded = numberIn(summary, "data_added"),
            .problems = {}};
}

/// Version 0.14 puts an error number where there is one, later ones a message.
QString reasonOf(const QJsonObject& error)
{
    if (const QString message = textIn(error, "message"); !message.isEmpty())
        return message;
    const auto number = static_cast<int>(numberIn(error, "Err"));
    return number > 0 ? systemErrorText(number) : QStringLiteral("cannot be read");
}

void takeTag(const QByteArray& tag, StoredCapture& capture)
{
    if (tag.startsWith(kItemTag))
        capture.record.items.append(bytesOfTagText(tag.mid(kItemTag.size())));
    const qsizetype middle = tag.indexOf('=');
    if (tag.startsWith(kLinkTag) && middle > 0)
        capture.links.insert(bytesOfTagText(tag.mid(kLinkTag.size(), middle - kLinkTag.size())),
                             bytesOfTagText(tag.mid(middle + 1)));
}

StoredCapture captureOf(const QJsonObject& snapshot)
{
    StoredCapture capture;
    capture.record.id = textIn(snapshot, "id");
    capture.record.date = QDateTime::fromString(textIn(snapshot, "time"), Qt::ISODateWithMs).toUTC();
    capture.record.host = textIn(snapshot, "hostname");
    capture.record.user = textIn(snapshot, "username");
    capture.tree = textIn(snapshot, "tree").toLatin1();
    for (const QJsonValue& each : snapshot.value(QLatin1StringView("paths")).toArray())
        if (const QString path = each.toString(); !path.contains(QChar::ReplacementCharacter))
            capture.record.items.append(path.toUtf8());
    for (const QJsonValue& each : snapshot.value(QLatin1StringView("tags")).toArray())
        takeTag(each.toString().toUtf8(), capture);
    std::sort(capture.record.items.begin(), capture.record.items.end());
    return capture;
}

struct TypeRow
{
    QLatin1StringView name;
    platform::ItemType type;
};
constexpr std::array kTypes{TypeRow{QLatin1StringView("file"), platform::ItemType::RegularFile},
                            TypeRow{QLatin1StringView("dir"), platform::ItemType::Directory},
                            TypeRow{QLatin1StringView("symlink"), platform::ItemType::SymbolicLink},
                            TypeRow{QLatin1StringView("dev"), platform::ItemType::BlockDevice},
                            TypeRow{QLatin1StringView("chardev"), platform::ItemType::CharacterDevice},
                            TypeRow{QLatin1StringView("fifo"), platform::ItemType::Fifo},
                            TypeRow{QLatin1StringView("socket"), platform::ItemType::Socket}};

platform::ItemType typeOfName(const QString& name)
{
    for (const TypeRow& each : kTypes)
        if (name == each.name)
            return each.type;
    return platform::ItemType::Bad;
}

std::optional<TreeNode> nodeOf(const QJsonObject& stored)
{
    const std::optional<QByteArray> name = bytesOfQuoted(textIn(stored, "name").toUtf8());
    if (!name)
        return std::nullopt;
    TreeNode node{*name, textIn(stored, "subtree").toLatin1(), {}};
    for (const QJsonValue& each : stored.value(QLatin1StringView("extended_attributes")).toArray()) {
        const QJsonObject attribute = each.toObject();
        node.attributes.append(
            {textIn(attribute, "name").toUtf8(), QByteArray::fromBase64(textIn(attribute, "value").toLatin1())});
    }
    return node;
}

} // namespace

CaptureMessage captureMessageOf(const QByteArray& line)
{
    const QJsonObject message = objectOf(line);
    const QString type = message.value(kType).toString();
    CaptureMessage result;
    if (type == QLatin1StringView("status"))
        result.progress = progressOf(message);
    else if (type == QLatin1StringView("summary"))
        result.summary = summaryOf(message);
    return result;
}

std::optional<EngineProblem> problemOf(const QByteArray& line)
{
    constexpr QByteArrayView kMissing(" does not exist, skipping");
    if (line.endsWith(kMissing))
        return EngineProblem{platform::textOfFileName(line.chopped(kMissing.size())),
                             QStringLiteral("it is not there")};
    const QJsonObject message = objectOf(line);
    if (message.value(kType).toString() != QLatin1StringView("error"))
        return std::nullopt;
    return EngineProblem{textIn(message, "item"), reasonOf(message.value(QLatin1StringView("error")).toObject())};
}

QByteArray wordsOf(const QByteArray& line)
{
    const QString message = textIn(objectOf(line), "message");
    return message.isEmpty() ? line : message.toUtf8();
}

QByteArrayList tagsOf(const QByteArrayList& items, const QHash<QByteArray, QByteArray>& links)
{
    QByteArrayList tags;
    for (const QByteArray& each : items)
        if (!survivesAsText(each))
            tags.append(kItemTag.toByteArray() + tagTextOf(each));
    for (auto each = links.begin(); each != links.end(); ++each)
        tags.append(kLinkTag.toByteArray() + tagTextOf(each.key()) + '=' + tagTextOf(each.value()));
    return tags;
}

std::optional<QList<StoredCapture>> capturesOf(const QByteArray& json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray() && json.trimmed() != "null") // what the engine writes for an empty list, at times
        return std::nullopt;
    QList<StoredCapture> captures;
    for (const QJsonValue& each : document.array())
        captures.append(captureOf(each.toObject()));
    std::stable_sort(captures.begin(), captures.end(), [](const StoredCapture& left, const StoredCapture& right) {
        return left.record.date < right.record.date;
    });
    return captures;
}

std::optional<CapturedItem> itemOf(const QByteArray& line)
{
    constexpr quint32 kPermissions = 0777;
    const QJsonObject node = objectOf(line);
    if (textIn(node, "struct_type") != QLatin1StringView("node"))
        return std::nullopt;
    return CapturedItem{
        .path = textIn(node, "path").toUtf8(),
        .type = typeOfName(textIn(node, "type")),
        .size = numberIn(node, "size"),
        .mode = static_cast<quint32>(numberIn(node, "mode")) & kPermissions,
        .modified = QDateTime::fromString(textIn(node, "mtime"), Qt::ISODateWithMs).toUTC(),
    };
}

std::optional<QList<TreeNode>> treeOf(const QByteArray& json)
{
    const QJsonValue nodes = objectOf(json).value(QLatin1StringView("nodes"));
    if (!nodes.isArray())
        return std::nullopt;
    QList<TreeNode> tree;
    for (const QJsonValue& each : nodes.toArray())
        if (const std::optional<TreeNode> node = nodeOf(each.toObject()))
            tree.append(*node);
    return tree;
}

} // namespace havrel::restic
