// SPDX-License-Identifier: MIT
#include "app/archive_open_panel.h"

#include "fs/path.h"

#include <QFileInfo>

namespace havrel {
namespace {

/// \source the product's archive type
constexpr QLatin1StringView kArchiveExtension("zephra");

QUrl withoutLink(const QUrl& url)
{
    const JNPathPtr path = JNPath::pathWithURL(url);
    return path && QFileInfo(path->path()).isSymLink() ? path->real()->url() : url;
}

} // namespace

ArchiveOpenPanel::ArchiveOpenPanel(QWidget& window, const QUrl& near)
    : QFileDialog(&window, tr("Choose Archive"))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setAcceptMode(AcceptOpen);
    setFileMode(ExistingFile);
    setNameFilter(tr("Archives (*.%1)").arg(kArchiveExtension));
    if (const JNPathPtr path = JNPath::pathWithURL(near))
        setDirectory(path->parent()->path());
    connect(this, &QDialog::finished, this, [this](int result) { finish(result); });
}

bool ArchiveOpenPanel::isArchiveFile(const QString& path)
{
    return QFileInfo(path).suffix().compare(kArchiveExtension, Qt::CaseInsensitive) == 0;
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
