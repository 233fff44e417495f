// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

#include <gtest/gtest.h>

namespace havrel {

/// Runs a program found by PATH on \p input and gives what it writes. Fails the test, and gives nothing, when the
/// program is missing or does not end well.
inline QByteArray outputOfProgram(const QString& program, const QStringList& arguments, const QByteArray& input)
{
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty()) {
        ADD_FAILURE() << program.toStdString() << " is not installed (scripts/setup installs it)";
        return {};
    }
    QProcess process;
    process.start(path, arguments);
    process.write(input);
    process.closeWriteChannel();
    const bool ended = process.waitForFinished(60'000);
    if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        ADD_FAILURE() << program.toStdString() << " failed: " << process.readAllStandardError().toStdString();
        return {};
    }
    return process.readAllStandardOutput();
}

/// What a Python script writes; its standard input is \p input.
inline QByteArray outputOfPython(const char* script, const QByteArray& input = {})
{
    return outputOfProgram(QStringLiteral("python3"), {QStringLiteral("-c"), QString::fromUtf8(script)}, input);
}

} // namespace havrel
