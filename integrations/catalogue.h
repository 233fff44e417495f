// SPDX-License-Identifier: MIT
#pragma once

#include <span>

namespace havrel::integrations {

/// A text that people read, in every language of the product; UTF-8.
///
/// Threads: any thread.
struct Text
{
    const char* english; ///< the source, shown where there is no better language
    const char* german;
};

/// A command that file managers offer for what is selected.
///
/// Threads: any thread.
struct MenuCommand
{
    const char* id;    ///< part of file names and identifiers; "preferences"
    const char* words; ///< the subcommand of `havrel` that it runs; "captureprefs edit"
    Text title;        ///< in the menu
    Text hint;         ///< a sentence on what it does
};

/// The commands in the order in which menus show them.
///
/// Threads: any thread.
[[nodiscard]] std::span<const MenuCommand> menuCommands();

inline constexpr const char* kApplicationId = "com.havrel.Service"; ///< also the name of the icon
inline constexpr const char* kMenuTitle = "Havrel";                 ///< of the submenu; a name, never translated

inline constexpr Text kApplicationName{"Havrel Service", "Havrel-Dienst"};
inline constexpr Text kApplicationSummary{"Backup commands for your files and folders",
                                          "Sicherungsbefehle für Dateien und Ordner"};
inline constexpr Text kKeywords{"backup;archive;capture;exclude;", "Sicherung;Archiv;Backup;ausschließen;"};

/// The paragraphs that tell what the application is for, one after the other.
///
/// Threads: any thread.
[[nodiscard]] std::span<const Text> applicationDescription();

} // namespace havrel::integrations
