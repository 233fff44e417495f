// SPDX-License-Identifier: MIT
#pragma once

#include "app/archive_picker_pane.h"
#include "tests/app/told_archives.h"
#include "tests/support/temporary_tree.h"

#include <QApplication>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>

namespace havrel::tests {

/// The archive picker with archives of the tree, or with none.
inline QPixmap archivePickerPicture(const TemporaryTree& tree, bool hasArchives)
{
    ArchivePickerPane pane;
    auto& list = pane.pickerViewController();
    if (hasArchives) {
        list.addArchiveInfo(archivesAt({tree.bytes("Archives/Home.zephra"), tree.bytes("Archives/Work.zephra")}),
                            QStringLiteral("recent"));
        list.addArchiveInfo(archivesAt({tree.bytes("Archives/Laptop.zephra"), "/media/disk/Photos 2019.zephra"}),
                            QStringLiteral("other"));
    }
    auto& action = *pane.findChild<QPushButton*>(QStringLiteral("actionButton"));
    pane.findChild<QLabel*>(QStringLiteral("titleField"))
        ->setText(QCoreApplication::translate("havrel::HavrelServices", "Capture \"%1\" to:")
                      .arg(QStringLiteral("Projects")));
    action.setText(QCoreApplication::translate("havrel::HavrelServices", "Capture"));
    action.setEnabled(list.choices());
    list.selectFirstArchive();
    pane.sizeToFit();
    pane.show();
    QApplication::setActiveWindow(&pane);
    QApplication::processEvents();
    return pane.grab();
}

} // namespace havrel::tests
