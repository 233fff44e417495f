// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

namespace havrel {

/// The help book, "com.havrel.help": a page in the language of the user's texts, installed with the program's data.
namespace help_pages {

/// The page at \p anchor: of the installation that the program runs from, else of one in the data folders of the
/// session, else, for a program that was not installed, of its sources. Empty when there is none. Looks at the disk.
///
/// Threads: the main thread only.
[[nodiscard]] QUrl pageAt(const QString& anchor);

/// Shows it in the user's browser; a failure is logged at Caution.
///
/// \selector openHelpAnchor:inBook:
///
/// Threads: the main thread only.
void openAt(const QString& anchor);

} // namespace help_pages
} // namespace havrel
