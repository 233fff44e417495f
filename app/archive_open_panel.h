// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>
#include <QUrl>

namespace havrel {

/// Lets the user choose the file of an archive, in a dialog on a window that takes no input meanwhile. Goes by itself
/// when it is closed.
///
/// Threads: the main thread only.
class ArchiveOpenPanel : public QFileDialog
{
    Q_OBJECT

public:
    /// \param near begins in the folder of this archive, if it is there, else in the user's.
    ArchiveOpenPanel(QWidget& window, const QUrl& near);

    /// What the user may choose: a file of the product's archive type. The desktop's own dialogs offer nothing else,
    /// but in the toolkit's one may type any name.
    [[nodiscard]] static bool isArchiveFile(const QString& path);

    void accept() override; ///< stays open on what is no archive

Q_SIGNALS:
    /// The user has chosen the file; where it was a link, what it leads to.
    void chosen(const QUrl& archive);

private:
    void finish(int result);
};

} // namespace havrel
