// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "fs/volume_info.h"
#include "platform/mounted_volumes.h"

#include <utility>

namespace havrel {
namespace {

void raiseFor(int error, const QString& reason, const QByteArray& mountPoint)
{
    if (error != 0)
        HVException::ioErrno(error, reason).setCPath(mountPoint.constData()).raise();
}

platform::MountedVolumes mountedVolumes()
{
    platform::MountedVolumes mounted = platform::askMountedVolumes();
    if (mounted.openError != 0)
        HVException::ioErrno(mounted.openError, QStringLiteral("cannot get count of mounted volumes")).raise();
    if (mounted.readError != 0)
        HVException::ioErrno(mounted.readError, QStringLiteral("cannot get stats of mounted volumes")).raise();
    return mounted;
}

/// Raises what the question for the volume met with.
void raiseProblem(const platform::MountedVolume& volume)
{
    raiseFor(volume.statisticsError, QStringLiteral("problem getting volume statfs"), volume.fileSystem.mountPoint);
    raiseFor(volume.attributesError, QStringLiteral("problem getting volume attributes"), volume.fileSystem.mountPoint);
}

} // namespace

std::vector<JNVolumeInfoPtr> JNVolumeInfo::allVolumes()
{
    std::vector<JNVolumeInfoPtr> volumes;
    for (platform::MountedVolume& volume : mountedVolumes().volumes) {
        try {
            raiseProblem(volume);
            volumes.push_back(withStat(std::move(volume.fileSystem), volume.attributes));
        } catch (const Exception& problem) {
            Logr::logException(LogClassification::Debug, problem);
        }
    }
    return volumes;
}

std::vector<JNVolumeInfoPtr> JNVolumeInfo::browsableVolumes()
{
    std::vector<JNVolumeInfoPtr> browsable;
    for (JNVolumeInfoPtr& volume : allVolumes())
        if (volume->isBrowsable())
            browsable.push_back(std::move(volume));
    return browsable;
}

} // namespace havrel
