// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QPushButton;

namespace havrel {

class ShortenedLabel;

/// The quiet line that says whether what is shown is on the disk: "Saved", "Saving in 6 seconds", "Not saved: ...",
/// "Changed elsewhere: ...".
///
/// Threads: the main thread only.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget* parent = nullptr);

    void showSaved();
    /// \param seconds until it is saved by itself; offers "Save Now". \param overOthers changes of other programs.
    void showSavingIn(int seconds, bool overOthers = false);
    /// \param reason in words; offers "Save Now".
    void showNotSaved(const QString& reason);

    /// \param text what else is true of the items while there is nothing to save.
    void showNote(const QString& text);
    /// Offers "Reload" beside whatever is shown.
    void offerReloading(bool isOffered);

    [[nodiscard]] QString text() const;

Q_SIGNALS:
    void saveNow();
    void reload();

private:
    void show(const QString& text, bool canSave);

    ShortenedLabel* m_label;
    QPushButton* m_reloadButton;
    QPushButton* m_saveButton;
};

} // namespace havrel
