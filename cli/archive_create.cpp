// SPDX-License-Identifier: MIT
#include "cli/archives.h"
#include "cli/command.h"
#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/report.h"
#include "cli/subcommands.h"
#include "components/archive_key.h"
#include "components/archive_place.h"
#include "components/archive_registry.h"
#include "components/restic_engine.h"
#include "platform/item_removal.h"
#include "platform/own_process.h"

namespace havrel::cli {
namespace {

struct Options
{
    QByteArrayList files;
    std::optional<QByteArray> repository;
    std::optional<QByteArray> keyCommand;
};

/// Writes the file and the key first: a repository whose key could not be kept would be lost.
void make(const ArchiveFile& archive, const QByteArray& path)
{
    const bool hasKeyFile = archive.key.command.isEmpty();
    archive.writeTo(path);
    try {
        if (hasKeyFile)
            makeKeyFile(archive.identifier);
        else
            allowKeyCommand(archive.identifier, archive.key.command);
        engineOf(archive)->makeRepository();
    } catch (...) {
        (void)platform::removeItem(path);
        removeKeyFile(archive.identifier);
        throw;
    }
    ArchiveRegistry().note(archive, path);
}

QString commandIn(const Options& options)
{
    const QString command = QString::fromUtf8(options.keyCommand.value_or(QByteArray()));
    if (options.keyCommand && (command.trimmed().isEmpty() || command.toUtf8() != *options.keyCommand))
        throw WrongUsage("--key-command is not the text of a command");
    return command;
}

ExitStatus create(const Options& options)
{
    if (options.files.size() != 1)
        throw WrongUsage(options.files.isEmpty() ? "no archive given" : "more than one archive given");
    const QByteArray path = archivePath(options.files.constFirst());
    if (!path.endsWith(".zephra") || path.endsWith("/.zephra"))
        throw WrongUsage("the name of an archive ends in .zephra");
    if (!options.repository || options.repository->isEmpty())
        throw WrongUsage("--repository is missing: the place that is to hold what is captured");
    const QByteArray place = placeOfRepository(*options.repository, platform::workingFolder());
    const ArchiveFile archive = ArchiveFile::of(kResticEngine, place, commandIn(options));
    Report report;
    guarded(report, options.files.constFirst(), [&] {
        make(archive, path);
        if (archive.key.command.isEmpty())
            writeRecord("The key is in " + printableName(keyFileOf(archive.identifier)) +
                        ": without it, nothing comes back from the archive. Keep a copy elsewhere.");
    });
    return report.status();
}

} // namespace

void defineArchiveCreate(Command& command)
{
    const auto options = std::make_shared<Options>();
    command.operands("FILE", options->files, "The archive to make, a small file whose name ends in .zephra");
    command.value("--repository", "PLACE", options->repository, "Where to keep what is captured; see below");
    command.value("--key-command", "CMD", options->keyCommand, "A command that prints the key, instead of a new key");
    command.footer("The engine of archives is restic. PLACE is a folder, or what restic knows otherwise:\n"
                   "  sftp:user@host:/folder   s3:https://host/bucket   rest:https://host/   rclone:remote:folder\n"
                   "\n"
                   "The key is made at random and kept in a file that only you can read, unless a command is to give\n"
                   "it: 'pass show backup', say. That is run without a shell; words with spaces are quoted. With such\n"
                   "a command, a repository that is there already is taken over if the key opens it. Only what you\n"
                   "have given yourself is ever run: an archive file that names another command is refused.\n"
                   "\n"
                   "Examples:\n"
                   "  havrel archive create Home.zephra --repository /media/disk/backup");
    command.action([options] { return create(*options); });
}

} // namespace havrel::cli
