// SPDX-License-Identifier: MIT
#include "integrations/catalogue.h"

#include <array>

namespace havrel::integrations {
namespace {

constexpr auto kMenuCommands = std::to_array<MenuCommand>({
    {.id = "capture",
     .words = "capture",
     .title = {"Capture to Archive...", "In Archiv sichern..."},
     .hint = {"Captures the selected items into an archive right away",
              "Sichert die ausgewählten Objekte sofort in ein Archiv"}},
    {.id = "reveal",
     .words = "reveal",
     .title = {"Reveal in Archive...", "Im Archiv zeigen..."},
     .hint = {"Shows the selected items inside of an archive", "Zeigt die ausgewählten Objekte in einem Archiv"}},
    {.id = "preferences",
     .words = "captureprefs edit",
     .title = {"Capture Preferences...", "Sicherungseinstellungen..."},
     .hint = {"Says how the selected items are captured", "Legt fest, wie die ausgewählten Objekte gesichert werden"}},
});

constexpr auto kDescription = std::to_array<Text>({
    {"Havrel captures your files and folders into archives. This application brings its commands to the context menu "
     "of "
     "your file manager: capture the selected items right away, or find them again in an archive.",
     "Havrel sichert Dateien und Ordner in Archive. Diese Anwendung bringt die Befehle dafür in das Kontextmenü der "
     "Dateiverwaltung: die ausgewählten Objekte sofort sichern oder sie in einem Archiv wiederfinden."},
    {"It also lets you say how each item is captured: leave out a folder, ignore changes to a file during office "
     "hours, "
     "or keep a folder but not what matches a pattern.",
     "Außerdem lässt sich für jedes Objekt festlegen, wie es gesichert wird: einen Ordner auslassen, Änderungen einer "
     "Datei während der Arbeitszeit übergehen oder einen Ordner sichern, aber nicht, was einem Muster entspricht."},
});

} // namespace

std::span<const MenuCommand> menuCommands()
{
    return kMenuCommands;
}

std::span<const Text> applicationDescription()
{
    return kDescription;
}

} // namespace havrel::integrations
