// SPDX-License-Identifier: MIT
#include "platform/mounted_volumes.h"

#include "platform/file_system_types.h"
#include "platform/patient_questions.h"

#include <QSet>

#include <utility>

namespace havrel::platform {
namespace {

MountedVolume asked(FileSystem fileSystem)
{
    MountedVolume volume;
    volume.fileSystem = std::move(fileSystem);
    volume.statisticsError = askForStatistics(volume.fileSystem);
    if (volume.statisticsError == 0)
        volume.attributesError = askForAttributes(volume.fileSystem, volume.attributes);
    return volume;
}

MountedVolume unasked(const FileSystem& fileSystem)
{
    return {fileSystem, attributesByType(fileSystem), 0, 0};
}

/// Whether the path to a mount point leads through one of \p hanging. The root does not count: who hangs there cannot
/// ask.
bool leadsThrough(const QSet<QByteArray>& hanging, QByteArray mountPoint)
{
    for (qsizetype slash = 0; (slash = mountPoint.lastIndexOf('/')) > 0;) {
        mountPoint.truncate(slash);
        if (hanging.contains(mountPoint))
            return true;
    }
    return false;
}

std::vector<FileSystem> fileSystemsOf(const std::vector<MountEntry>& mounts)
{
    const QByteArrayList hidden = readHiddenMountPoints();
    std::vector<FileSystem> fileSystems;
    QSet<QByteArray> hanging;
    for (const MountEntry& mount : mounts) {
        fileSystems.push_back(fileSystemOfMount(mount, hidden));
        if (fileSystems.back().mayHang)
            hanging.insert(mount.mountPoint);
    }
    for (FileSystem& each : fileSystems)
        each.mayHang = each.mayHang || leadsThrough(hanging, each.mountPoint);
    return fileSystems;
}

/// A volume that is being asked, or has been.
struct Inquiry
{
    MountedVolume volume;
    PatientQuestions::Ticket ticket = nullptr;
};

Inquiry begun(const FileSystem& fileSystem, std::uint64_t mount)
{
    if (fileSystemTypeNamed(fileSystem.type).has(kNeverAsk))
        return {unasked(fileSystem)};
    if (!fileSystem.mayHang)
        return {asked(fileSystem)};
    return {unasked(fileSystem), PatientQuestions::shared().ask(mount, [fileSystem] { return asked(fileSystem); })};
}

} // namespace

MountedVolumes askMountedVolumes(std::chrono::milliseconds patience)
{
    MountTable table = readMountTable();
    MountedVolumes found;
    found.openError = table.openError;
    found.readError = table.readError;
    const std::vector<MountEntry> mounts = uncoveredMounts(table.entries);
    const std::vector<FileSystem> fileSystems = fileSystemsOf(mounts);
    std::vector<Inquiry> inquiries;
    for (std::size_t i = 0; i < mounts.size(); ++i)
        inquiries.push_back(begun(fileSystems[i], mounts[i].id));
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (Inquiry& each : inquiries) {
        auto answer = PatientQuestions::wait(each.ticket, deadline);
        found.volumes.push_back(std::move(answer ? *answer : each.volume));
    }
    return found;
}

} // namespace havrel::platform
