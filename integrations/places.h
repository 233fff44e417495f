// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace havrel::integrations {

/// Where on this computer programs, their modules and their data are looked for.
///
/// Threads: const members any thread, others one at a time.
struct Places
{
    QByteArray dataHome;          ///< the user's own data
    QByteArray configHome;        ///< the user's own settings
    QByteArrayList dataFolders;   ///< everybody's data, the most important first
    QByteArrayList configFolders; ///< everybody's settings, the most important first
    QByteArray compiledInFolder;  ///< everybody's data, for programs that look nowhere else
    QByteArrayList programFolders;
    QByteArrayList libraryFolders;

    /// As the environment of this process says; relative names in it are ignored.
    ///
    /// \source XDG Base Directory Specification 0.8
    [[nodiscard]] static Places ofThisProcess();

    /// Whether a program of that name could be started.
    [[nodiscard]] bool hasProgram(const QByteArray& name) const;
    /// Whether a module is in one of the folders for libraries, or of those for one architecture in them.
    [[nodiscard]] bool hasModule(const QByteArray& path) const;
};

} // namespace havrel::integrations
