// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>
#include <QTranslator>

namespace havrel {

/// The texts of this program and of the toolkit's own dialogs in the user's language, as long as this lives. A language
/// that there are no texts for leaves them in English.
///
/// Threads: the main thread only.
class InstalledTranslations
{
public:
    explicit InstalledTranslations(const QLocale& locale = QLocale());
    ~InstalledTranslations();
    InstalledTranslations(const InstalledTranslations&) = delete;
    InstalledTranslations& operator=(const InstalledTranslations&) = delete;
    InstalledTranslations(InstalledTranslations&&) = delete;
    InstalledTranslations& operator=(InstalledTranslations&&) = delete;

private:
    QTranslator m_toolkit;
    QTranslator m_own; // asked first
};

} // namespace havrel
