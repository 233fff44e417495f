// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/help_pages.h"

#include "diagnostics/logr.h"
#include "fs/path_text.h"
#include "platform/file_names.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QStandardPaths>

namespace havrel::help_pages {
namespace {

/// Where the pages may be, the best first.
QStringList folders()
{
    QStringList found{QCoreApplication::applicationDirPath() + QStringLiteral("/../share/havrel/help")};
    found += QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, QStringLiteral("havrel/help"), QStandardPaths::LocateDirectory);
    found.append(QStringLiteral(HAVREL_HELP_SOURCES));
    return found;
}

/// The translator names the file of its language.
QStringList fileNames()
{
    //: The file of the help page in this language, of those in resources/help.
    const QString translated = QCoreApplication::translate("HelpPages", "havrel.html");
    return {translated, QStringLiteral("havrel.html")};
}

} // namespace

QUrl pageAt(const QString& anchor)
{
    for (const QString& folder : folders()) {
        for (const QString& name : fileNames()) {
            const QString path = folder + u'/' + name;
            if (!QFile::exists(path))
                continue;
            QUrl page = path_text::toURL(path_text::standardised(platform::bytesOfFileName(path)));
            page.setFragment(anchor);
            return page;
        }
    }
    return {};
}

void openAt(const QString& anchor)
{
    const QUrl page = pageAt(anchor);
    if (page.isEmpty() || !QDesktopServices::openUrl(page))
        Logr::log(LogClassification::Caution, QStringLiteral("cannot open help at %1").arg(anchor));
}

} // namespace havrel::help_pages
