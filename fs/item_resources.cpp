// SPDX-License-Identifier: MIT
#include "fs/item_resources.h"

#include "fs/path.h"
#include "platform/item_access.h"
#include "platform/item_types.h"

#include <algorithm>
#include <array>

namespace havrel {
namespace {

/// Folders that come from systems which show them as one document or one program, and that people copy as such.
constexpr auto kPackageExtensions = std::to_array<QLatin1StringView>({
    QLatin1StringView("app"),
    QLatin1StringView("appdir"),
    QLatin1StringView("bundle"),
    QLatin1StringView("kext"),
    QLatin1StringView("mpkg"),
    QLatin1StringView("photoslibrary"),
    QLatin1StringView("pkg"),
    QLatin1StringView("plugin"),
    QLatin1StringView("rtfd"),
    QLatin1StringView("sparsebundle"),
});

} // namespace

bool isPackageName(QStringView name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0)
        return false;
    const QStringView extension = name.mid(dot + 1);
    return std::any_of(kPackageExtensions.begin(), kPackageExtensions.end(), [extension](QLatin1StringView each) {
        return extension.compare(each, Qt::CaseInsensitive) == 0;
    });
}

ItemResources itemResources(const JNPath& path)
{
    const QByteArray bytes = path.cPath();
    platform::ItemType type = platform::ItemType::None;
    if (platform::probeType(bytes, type) != 0)
        return {};
    const bool isDirectory = type == platform::ItemType::Directory;
    return {.isDirectory = isDirectory,
            .isPackage = isDirectory && isPackageName(path.name()),
            .isWritable = platform::checkAttributesWritable(bytes) == 0,
            .canCarryAttributes = isDirectory || type == platform::ItemType::RegularFile};
}

} // namespace havrel
