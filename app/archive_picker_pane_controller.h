// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QList>
#include <QObject>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <set>

class QLabel;
class QPushButton;

namespace havrel {

class ArchivePickerPane;
class ArchivePickerViewController;

/// Lets the user choose an archive for items, and does something with the chosen one. Closed without a choice, it does
/// nothing. Made for one choice, and keeps itself alive until its window is closed.
///
/// Threads: the main thread only.
class ArchivePickerPaneController : public QObject, public std::enable_shared_from_this<ArchivePickerPaneController>
{
    Q_OBJECT

public:
    using Running = std::set<std::shared_ptr<ArchivePickerPaneController>>;

    ArchivePickerPaneController();
    ~ArchivePickerPaneController() override;
    ArchivePickerPaneController(const ArchivePickerPaneController&) = delete;
    ArchivePickerPaneController& operator=(const ArchivePickerPaneController&) = delete;
    ArchivePickerPaneController(ArchivePickerPaneController&&) = delete;
    ArchivePickerPaneController& operator=(ArchivePickerPaneController&&) = delete;

    /// A new one with its window, which is not on screen yet. \selector +makePickerPane
    [[nodiscard]] static std::shared_ptr<ArchivePickerPaneController> makePickerPane();
    /// Those that run.
    [[nodiscard]] static const Running& runningPickers();
    /// At the end of main: windows must not outlive the application object.
    static void forgetRunningPickers();

    [[nodiscard]] QString prompt() const { return m_prompt; }            ///< null: "Choose archive:". \selector prompt
    void setPrompt(const QString& prompt) { m_prompt = prompt; }         ///< \selector setPrompt:
    [[nodiscard]] QString actionTitle() const { return m_actionTitle; }  ///< null: "Open". \selector actionTitle
    void setActionTitle(const QString& title) { m_actionTitle = title; } ///< \selector setActionTitle:
    /// Called with the chosen archive. \selector actionBlock
    [[nodiscard]] const std::function<void(const QUrl& archive)>& actionBlock() const { return m_actionBlock; }
    /// \selector setActionBlock:
    void setActionBlock(std::function<void(const QUrl& archive)> block) { m_actionBlock = std::move(block); }

    [[nodiscard]] ArchivePickerPane& window() const { return *m_window; }
    [[nodiscard]] ArchivePickerViewController& pickerViewController() const; ///< \selector pickerViewController
    [[nodiscard]] QLabel& titleField() const;                                ///< \selector titleField
    [[nodiscard]] QPushButton& actionButton() const;                         ///< \selector actionButton

    /// Shows the picker with the archives for the items. Blocks until the monitor has told them, or until the user has
    /// read that it cannot be reached; then there is nothing to choose. \selector runWithArchivesForItems:
    void runWithArchivesForItems(const QByteArrayList& itemPaths);
    /// Lists the archives that hold the items ("recent"), then the others that were lately captured to ("other").
    /// Blocks as runWithArchivesForItems. \selector populateWithArchivesForItems:
    void populateWithArchivesForItems(const QByteArrayList& itemPaths);

    /// Does what is to be done with the selected archive, then closes the window; nothing when none is selected.
    /// \selector performArchiveAction:
    void performArchiveAction();
    void cancel(); ///< Closes the window. \selector cancel:
    /// Lets the user choose the file of an archive in a dialog on the window. The chosen one is treated as one of the
    /// list, and the window closes soon; otherwise it stays. \selector otherArchive:
    void otherArchive();
    /// Calls the action block, if there is one. \selector performActionWithArchive:
    void performActionWithArchive(const QUrl& archive);
    /// The picker runs no longer; it goes soon. \selector windowWillClose:
    void windowWillClose();

private:
    /// What the monitor tells.
    struct Archives
    {
        QList<QVariantMap> ofItems;
        QList<QVariantMap> recent;
    };

    [[nodiscard]] static Running& running();
    [[nodiscard]] static std::shared_ptr<const Archives> archivesForItems(const QByteArrayList& itemPaths);
    void connectControls();
    void performActionThenClose(const QUrl& archive);

    QString m_prompt;
    QString m_actionTitle;
    std::function<void(const QUrl& archive)> m_actionBlock;
    std::unique_ptr<ArchivePickerPane> m_window;
};

} // namespace havrel
