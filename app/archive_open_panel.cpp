// SPDX-License-Identifier: MIT
#include "app/archive_open_panel.h"

#include "capture_prefs_ui/archive_type.h"
#include "fs/path.h"

#include <QDir>
#include <QFileInfo>

namespace havrel {
namespace {

QUrl withoutLink(const QUrl& url)
{
    const JNPathPtr path = JNPath::pathWithURL(url);
    return path && QFileInfo(path->path()).isSymLink() ? path->real()->url() : url;
}

/// The folder of \p archive, if there is one, else the user's: what the process works in is nothing that people know.
QString folderNear(const QUrl& archive)
{
    const JNPathPtr path = JNPath::pathWithURL(archive);
    const QString folder = path ? path->parent()->path() : QString();
    return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

} // namespace

ArchiveOpenPanel::ArchiveOpenPanel(QWidget& window, const QUrl& near)
    : QFileDialog(&window, tr("Choose Archive"))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setAcceptMode(AcceptOpen);
    setFileMode(ExistingFile);
    setNameFilter(tr("Archives (*.%1)").arg(archive_type::kExtension));
    setDirectory(folderNear(near));
    connect(this, &QDialog::finished, this, [this](int result) { finish(result); });
}

bool ArchiveOpenPanel::isArchiveFile(const QString& path)
{
    return QFileInfo(path).suffix().compare(archive_type::kExtension, Qt::CaseInsensitive) == 0;
}

/// A folder is gone into, a name that nothing has is complained about: both by the toolkit.
void ArchiveOpenPanel::accept()
{
    const QStringList files = selectedFiles();
    const bool isRefused = files.size() != 1 || (QFileInfo(files.first()).isFile() && !isArchiveFile(files.first()));
    if (!isRefused)
        QFileDialog::accept();
}

void ArchiveOpenPanel::finish(int result)
{
    if (result == Accepted && !selectedUrls().isEmpty())
        Q_EMIT chosen(withoutLink(selectedUrls().first()));
}

} // namespace havrel
