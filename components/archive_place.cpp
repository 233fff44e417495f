// SPDX-License-Identifier: MIT
#include "components/archive_place.h"

#include "components/item_names.h"

#include <algorithm>
#include <array>

namespace havrel {
namespace {

constexpr std::array kElsewhere{"sftp:", "s3:", "rest:", "rclone:", "b2:", "azure:", "gs:", "swift:"};

} // namespace

QByteArray placeOfRepository(const QByteArray& given, const QByteArray& workingFolder)
{
    constexpr QByteArrayView kLocal("local:");
    if (std::any_of(
            kElsewhere.begin(), kElsewhere.end(), [&given](const char* each) { return given.startsWith(each); }))
        return given;
    return plainPath(given.startsWith(kLocal) ? given.mid(kLocal.size()) : given, workingFolder);
}

} // namespace havrel
