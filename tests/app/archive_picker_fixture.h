// SPDX-License-Identifier: MIT
#pragma once

#include "app/archive_list_view.h"
#include "app/archive_open_panel.h"
#include "app/archive_picker_pane.h"
#include "app/archive_picker_view_controller.h"
#include "capture_prefs_ui/height_constraint.h"
#include "fs/path.h"
#include "tests/app/service_fixture.h"

#include <QTest>

namespace havrel::tests {

/// A picker whose monitor says what the test wants.
class WithPicker : public WithService
{
protected:
    WithPicker()
    {
        for (const char* each : {"Work.zephra", "notes.txt"})
            m_tree.add(each);
    }

    /// Runs the picker with archives that hold the items, and others.
    void run(const QByteArrayList& ofItems, const QByteArrayList& recent = {})
    {
        m_components.tell(archivesAt(ofItems), archivesAt(recent));
        m_picker->setActionBlock([this](const QUrl& archive) { m_chosen << archive; });
        m_picker->runWithArchivesForItems({"/item"});
    }
    [[nodiscard]] ArchiveListView& list() const { return m_picker->pickerViewController().tableView(); }
    /// Headers, and the paths of archives.
    [[nodiscard]] QStringList rows() const
    {
        QStringList rows;
        for (const QVariant& each : m_picker->pickerViewController().displayItems())
            rows << (each.typeId() == QMetaType::QUrl ? each.toUrl().path() : each.toString());
        return rows;
    }
    [[nodiscard]] QString selectedPath() const { return m_picker->pickerViewController().selectedArchive().path(); }
    [[nodiscard]] QUrl urlOf(std::string_view entry) const { return JNPath::withCPath(m_tree.bytes(entry))->url(); }
    [[nodiscard]] ArchiveOpenPanel* openPanel() const { return m_picker->window().findChild<ArchiveOpenPanel*>(); }
    /// Opens the dialog and chooses an item of the tree in it.
    void chooseOther(std::string_view entry)
    {
        m_picker->otherArchive();
        openPanel()->setDirectory(QString::fromLocal8Bit(m_tree.bytes("")));
        openPanel()->selectFile(QString::fromLocal8Bit(m_tree.bytes(entry)));
        openPanel()->accept();
    }

    std::shared_ptr<ArchivePickerPaneController> m_picker = ArchivePickerPaneController::makePickerPane();
    QList<QUrl> m_chosen;
};

} // namespace havrel::tests
