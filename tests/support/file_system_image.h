// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/temporary_tree.h"

#include <QByteArray>
#include <QProcess>
#include <QStringList>

#include <filesystem>

namespace havrel::tests {

/// Makes a file that holds an empty file system, sparse. \param make the program and its options before the file's
/// name. \return whether the program is installed and could make it.
inline bool makeImage(const TemporaryTree& tree, const char* name, const QStringList& make, std::uintmax_t bytes)
{
    tree.add(name);
    std::filesystem::resize_file(tree.path(name), bytes);
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    QStringList arguments = make.mid(1);
    arguments << QString::fromStdString(tree.path(name));
    process.start(QStringLiteral("/sbin/") + make.first(), arguments);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

} // namespace havrel::tests
