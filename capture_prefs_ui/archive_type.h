// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>

namespace havrel::archive_type {

/// The product's archives as desktops know them: files of this extension, without its dot, in small and capital
/// letters. \source the product's archive type; resources/mime/com.havrel.Service.xml
inline constexpr QLatin1StringView kExtension("zephra");
/// The name of their icon in themes: that of their MIME type "application/x-zephra".
/// \source Shared MIME-info Database specification, "icon": the type with "-" for "/"
inline constexpr QLatin1StringView kIconName("application-x-zephra");

} // namespace havrel::archive_type
