// SPDX-License-Identifier: MIT
#include "foundation/os_version_names.h"

#include <array>

namespace havrel {
namespace {

struct VersionName
{
    PackedOSVersion from;
    QLatin1StringView name;
};

// Newest first.
constexpr auto kNicknames = std::to_array<VersionName>({
    {0xF0000, QLatin1StringView("Unknown")},
    {kSonoma, QLatin1StringView("Sonoma")},
    {kVentura, QLatin1StringView("Ventura")},
    {kMonterey, QLatin1StringView("Monterey")},
    {kBigSur, QLatin1StringView("Big Sur")},
    {kCatalina, QLatin1StringView("Catalina")},
    {kMojave, QLatin1StringView("Mojave")},
    {0xA0D00, QLatin1StringView("High Sierra")},
    {0xA0C00, QLatin1StringView("Sierra")},
    {0xA0B00, QLatin1StringView("El Capitan")},
    {0xA0A00, QLatin1StringView("Yosemite")},
    {0xA0900, QLatin1StringView("Mavericks")},
    {0xA0800, QLatin1StringView("Mountain Lion")},
    {0xA0700, QLatin1StringView("Lion")},
    {0xA0600, QLatin1StringView("Snow Leopard")},
    {0xA0500, QLatin1StringView("Leopard")},
    {0xA0400, QLatin1StringView("Tiger")},
    {0, QLatin1StringView("Panther (or earlier)")},
});

constexpr auto kPrefixes = std::to_array<VersionName>({
    {0xA0C00, QLatin1StringView("macOS ")},
    {0xA0800, QLatin1StringView("OS X ")},
    {0, QLatin1StringView("Mac OS X ")},
});

template<class Table>
QString nameIn(const Table& newestFirst, PackedOSVersion version)
{
    for (const VersionName& row : newestFirst)
        if (row.from <= version)
            return row.name;
    return {};
}

} // namespace

QString nicknameOfOSVersion(PackedOSVersion version)
{
    return nameIn(kNicknames, version);
}

QString prefixOfOSVersion(PackedOSVersion version)
{
    return nameIn(kPrefixes, version);
}

} // namespace havrel
