// SPDX-License-Identifier: MIT
#include "integrations/file_manager.h"

#include <array>

namespace havrel::integrations {
namespace {

constexpr auto kNautilus = std::to_array<Way>({
    {.name = "extension",
     .files = nautilusExtension,
     .package = "python3-nautilus",
     .module = "nautilus/extensions-4/libnautilus-python.so"},
});

constexpr auto kNemo = std::to_array<Way>({
    {.name = "extension",
     .files = nemoExtension,
     .package = "nemo-python",
     .module = "nemo/extensions-3.0/libnemo-python.so",
     .seen = Seen::InCompiledInFolder},
    {.name = "actions", .files = nemoActions, .package = nullptr, .module = nullptr, .noticed = Noticed::AtOnce},
});

constexpr auto kCaja = std::to_array<Way>({
    {.name = "extension",
     .files = cajaExtension,
     .package = "python3-caja",
     .module = "caja/extensions-2.0/libcaja-python.so",
     .seen = Seen::InCompiledInFolder},
});

constexpr auto kThunar = std::to_array<Way>({
    {.name = "extension",
     .files = thunarExtension,
     .package = "thunarx-python gir1.2-thunarx-3.0", // which the first does not ask for
     .module = "thunarx-3/thunarx-python.so",
     .description = "girepository-1.0/Thunarx-3.0.typelib"},
    {.name = "actions", .files = nullptr, .package = nullptr, .module = nullptr},
});

constexpr auto kDolphin = std::to_array<Way>({
    {.name = "service menu",
     .files = dolphinServiceMenu,
     .package = nullptr,
     .module = nullptr,
     .noticed = Noticed::AtOnce,
     .mustBeExecutable = true},
});

constexpr auto kPCManFM = std::to_array<Way>({
    {.name = "actions", .files = fileManagerActions, .package = nullptr, .module = nullptr},
});

constexpr auto kFileManagers = std::to_array<FileManager>({
    {"caja", "Caja", "caja", "caja -q", kCaja},
    {"dolphin", "Dolphin", "dolphin", "kquitapp5 dolphin", kDolphin},
    {"nautilus", "Nautilus", "nautilus", "nautilus -q", kNautilus},
    {"nemo", "Nemo", "nemo", "nemo -q", kNemo},
    {"pcmanfm-qt", "PCManFM-Qt", "pcmanfm-qt", "pcmanfm-qt -q", kPCManFM},
    {"thunar", "Thunar", "thunar", "thunar -q", kThunar},
});

} // namespace

std::span<const FileManager> fileManagers()
{
    return kFileManagers;
}

} // namespace havrel::integrations
