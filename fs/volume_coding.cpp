// SPDX-License-Identifier: MIT
#include "fs/volume_coding.h"

#include "foundation/coder.h"
#include "fs/volume_info.h"
#include "platform/file_names.h"

namespace havrel {
namespace {

constexpr QLatin1StringView kMountPointKey{"mountpoint"};

JNVolumeInfoPtr volumeIn(const QVariant& object)
{
    return object.metaType() == QMetaType::fromType<JNVolumeInfoPtr>() ? object.value<JNVolumeInfoPtr>() : nullptr;
}

ArchivableClass volumeRow()
{
    ArchivableClass row;
    row.name = QStringLiteral("JNVolumeInfo");
    row.superclasses = {QStringLiteral("NSObject")};
    row.isInstance = [](const QVariant& object) { return volumeIn(object) != nullptr; };
    row.identity = [](const QVariant& object) -> const void* { return volumeIn(object).get(); };
    row.encode = [](const QVariant& object, Encoder& encoder) { volumeIn(object)->encodeWithCoder(encoder); };
    row.decode = [](Decoder& decoder) {
        const JNVolumeInfoPtr volume = JNVolumeInfo::withCoder(decoder);
        return volume ? QVariant::fromValue(volume) : QVariant();
    };
    return row;
}

} // namespace

bool registerVolumeClass()
{
    registerArchivableClass(volumeRow());
    return true;
}

void JNVolumeInfo::encodeWithCoder(Encoder& encoder) const
{
    if (encoder.allowsKeyedCoding())
        encoder.encodeObject(path(), kMountPointKey);
    else
        encoder.encodeObject(path());
}

JNVolumeInfoPtr JNVolumeInfo::withCoder(Decoder& decoder)
{
    const QVariant mountPoint = decoder.allowsKeyedCoding()
                                    ? decoder.decodeObject({QStringLiteral("NSString")}, kMountPointKey)
                                    : decoder.decodeObject();
    if (mountPoint.metaType() != QMetaType::fromType<QString>())
        return nullptr;
    return withPath(platform::bytesOfFileName(mountPoint.toString()));
}

} // namespace havrel
