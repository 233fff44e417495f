// SPDX-License-Identifier: MIT
#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace havrel {

InstalledTranslations::InstalledTranslations(const QLocale& locale)
{
    const QString separator = QStringLiteral("_");
    const QString toolkitFolder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (m_toolkit.load(locale, QStringLiteral("qtbase"), separator, toolkitFolder))
        QCoreApplication::installTranslator(&m_toolkit);
    if (m_own.load(locale, QStringLiteral("havrel"), separator, QStringLiteral(":/i18n")))
        QCoreApplication::installTranslator(&m_own);
}

InstalledTranslations::~InstalledTranslations()
{
    QCoreApplication::removeTranslator(&m_own);
    QCoreApplication::removeTranslator(&m_toolkit);
}

} // namespace havrel
