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

/// What the picker lists in a picture.
struct PicturedArchives
{
    QByteArrayList ofItems;
    QByteArrayList recent;
};

inline PicturedArchives fewArchives(const TemporaryTree& tree)
{
    return {.ofItems = {tree.bytes("Archives/Home.zephra"), tree.bytes("Archives/Work.zephra")},
            .recent = {tree.bytes("Archives/Laptop.zephra"), "/media/disk/Photos 2019.zephra"}};
}

/// More than the screen has room for.
inline PicturedArchives manyArchives(const TemporaryTree& tree)
{
    PicturedArchives many{.ofItems = {tree.bytes("Archives/Home.zephra")}, .recent = {}};
    for (int year = 1990; year < 2030; ++year) {
        const std::string entry = "Archives/Year " + std::to_string(year) + ".zephra";
        tree.add(entry);
        many.recent << tree.bytes(entry);
    }
    return many;
}

/// The archive picker with these archives.
inline QPixmap archivePickerPicture(const PicturedArchives& archives)
{
    ArchivePickerPane pane;
    auto& list = pane.pickerViewController();
    list.addArchiveInfo(archivesAt(archives.ofItems), QStringLiteral("recent"));
    list.addArchiveInfo(archivesAt(archives.recent), QStringLiteral("other"));
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
