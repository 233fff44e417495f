// SPDX-License-Identifier: MIT
#include "cli/archives.h"
#include "cli/command.h"
#include "cli/json_output.h"
#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "components/item_names.h"
#include "platform/file_names.h"

#include <algorithm>
#include <array>

namespace havrel::cli {
namespace {

using platform::ItemType;

struct Options
{
    QByteArrayList files;
    std::optional<QByteArray> capture;
    bool json = false;
};

struct TypeRow
{
    ItemType type;
    QStringView name;
};
constexpr std::array kTypes{TypeRow{ItemType::RegularFile, u"file"},
                            TypeRow{ItemType::Directory, u"folder"},
                            TypeRow{ItemType::SymbolicLink, u"link"},
                            TypeRow{ItemType::BlockDevice, u"block device"},
                            TypeRow{ItemType::CharacterDevice, u"character device"},
                            TypeRow{ItemType::Fifo, u"pipe"},
                            TypeRow{ItemType::Socket, u"socket"}};

QByteArray jsonOfType(ItemType type)
{
    const auto row =
        std::find_if(kTypes.begin(), kTypes.end(), [type](const TypeRow& each) { return each.type == type; });
    return row == kTypes.end() ? kJsonNull.toByteArray() : jsonText(row->name);
}

QByteArray asJson(const CapturedItem& item)
{
    return JsonObject()
        .add(u"path", jsonText(platform::textOfFileName(item.path)))
        .add(u"type", jsonOfType(item.type))
        .add(u"size", QByteArray::number(item.size))
        .add(u"mode", jsonText(QString::number(item.mode, 8)))
        .add(u"modified", jsonDate(item.modified))
        .take();
}

/// The engine also lists the folders that lead to what was captured.
bool wasAskedFor(const CapturedItem& item, const CaptureRecord& capture)
{
    return std::any_of(capture.items.begin(), capture.items.end(), [&item](const QByteArray& each) {
        return isAtOrBelow(item.path, each);
    });
}

void list(const Options& options, const QByteArray& given)
{
    const std::unique_ptr<CaptureEngine> engine = engineOf(ArchiveFile::readFrom(archivePath(given)));
    const CaptureRecord capture = chosenCapture(engine->captures(), options.capture);
    engine->listItems(capture.id, {}, [&](const CapturedItem& item) {
        if (wasAskedFor(item, capture))
            writeRecord(options.json ? asJson(item) : printableName(item.path));
    });
}

ExitStatus run(const Options& options)
{
    if (options.files.size() != 1)
        throw WrongUsage(options.files.isEmpty() ? "no archive given" : "more than one archive given");
    Report report;
    guarded(report, options.files.constFirst(), [&] { list(options, options.files.constFirst()); });
    return report.status();
}

} // namespace

void defineArchiveItems(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands("FILE", options->files, "An archive");
    command.value("--capture", "ID", options->capture, "Of this capture, as 'info' shows it; the newest otherwise");
    command.flag("--json", options->json, "One JSON object a line: path, type, size, mode, modified");
    command.action([options] { return run(*options); });
}

} // namespace havrel::cli
