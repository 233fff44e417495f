// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>

namespace havrel::integrations {
class Integration;
} // namespace havrel::integrations

namespace havrel::cli {

/// What is shown of a file manager.
struct IntegrationRow
{
    QByteArray id;
    QByteArray name;
    bool isInstalled = false;
    bool isMenuThere = false;
    bool isForEverybody = false;
    bool isOutdated = false; ///< the user's own copy is not that of this version
    QByteArray way;          ///< "extension"
    QByteArray package;      ///< that has to load it; empty when none has to
    bool isPackageMissing = false;
    bool needsRestart = false;
    QByteArray quit;  ///< the command that ends it
    QByteArray fault; ///< empty, or why nothing can be told for sure
};

/// Blocks on the disk.
///
/// Threads: any thread.
[[nodiscard]] IntegrationRow rowOf(const integrations::Integration& integration);

/// What the user may do next about it; empty when all is well or the file manager is not installed.
///
/// Threads: any thread.
[[nodiscard]] QByteArray adviceOf(const IntegrationRow& row);

/// A head and a line for each, in columns.
///
/// Threads: any thread.
[[nodiscard]] QByteArray tableOf(const QList<IntegrationRow>& rows);

/// One JSON object.
///
/// Threads: any thread.
[[nodiscard]] QByteArray jsonOf(const IntegrationRow& row);

} // namespace havrel::cli
