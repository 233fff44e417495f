// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <functional>
#include <memory>

namespace havrel {

class ArchivePicker;

/// The ways to archives, which the parts that know them fill in at start. One that is empty is not there on this
/// installation.
struct ArchiveAccess
{
    /// A picker that is not on screen yet.
    std::function<std::shared_ptr<ArchivePicker>()> makePickerPane{};
    /// Asks the scheduler to capture the items into the archive right away; waits until the message was delivered.
    /// Answers false when the scheduler could not be reached.
    std::function<bool(const QByteArrayList& itemPaths, const QByteArray& archivePath)> quickCapture{};
};

/// The process's own.
///
/// Threads: the main thread only.
[[nodiscard]] ArchiveAccess& archiveAccess();

} // namespace havrel
