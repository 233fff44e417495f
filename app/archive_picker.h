// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QString>

#include <functional>

class QUrl;

namespace havrel {

/// Lets the user choose an archive for items, and does something with the chosen one. Closed without a choice, it does
/// nothing.
///
/// Threads: the main thread only.
class ArchivePicker
{
public:
    ArchivePicker() = default;
    virtual ~ArchivePicker();
    ArchivePicker(const ArchivePicker&) = delete;
    ArchivePicker& operator=(const ArchivePicker&) = delete;
    ArchivePicker(ArchivePicker&&) = delete;
    ArchivePicker& operator=(ArchivePicker&&) = delete;

    [[nodiscard]] QString prompt() const { return m_prompt; } ///< null: "Choose archive:"
    void setPrompt(const QString& prompt) { m_prompt = prompt; }
    [[nodiscard]] QString actionTitle() const { return m_actionTitle; } ///< null: "Open"
    void setActionTitle(const QString& title) { m_actionTitle = title; }
    /// Called with the chosen archive.
    [[nodiscard]] const std::function<void(const QUrl& archive)>& actionBlock() const { return m_actionBlock; }
    void setActionBlock(std::function<void(const QUrl& archive)> block) { m_actionBlock = std::move(block); }

    /// Shows the picker with the archives for the items and answers at once. The picker keeps itself alive until it is
    /// closed.
    ///
    /// \selector runWithArchivesForItems:
    virtual void runWithArchivesForItems(const QByteArrayList& itemPaths) = 0;

private:
    QString m_prompt;
    QString m_actionTitle;
    std::function<void(const QUrl& archive)> m_actionBlock;
};

} // namespace havrel
