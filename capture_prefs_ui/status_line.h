// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace havrel {

/// The quiet line that says whether what is shown is on the disk: "Saved", "Saving in 6 seconds", "Not saved: ...".
///
/// Threads: the main thread only.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget* parent = nullptr);

    void showSaved();
    /// \param seconds until it is saved by itself; offers "Save Now".
    void showSavingIn(int seconds);
    /// \param reason in words; offers "Save Now".
    void showNotSaved(const QString& reason);

    [[nodiscard]] QString text() const;

Q_SIGNALS:
    void saveNow();

private:
    void show(const QString& text, bool canSave);

    QLabel* m_label;
    QPushButton* m_saveButton;
};

} // namespace havrel
