// SPDX-License-Identifier: MIT
#include "platform/own_process.h"

#include "platform/file_contents.h"
#include "platform/file_names.h"

#include <cerrno>

#include <unistd.h>

namespace havrel::platform {

pid_t processID()
{
    return ::getpid();
}

pid_t parentProcessID()
{
    return ::getppid();
}

QString processName()
{
    return textOfFileName(::program_invocation_short_name);
}

QStringList processArguments()
{
    const FileContents contents = readFile("/proc/self/cmdline");
    if (contents.bytes.isEmpty())
        return {};
    QList<QByteArray> arguments = contents.bytes.split('\0');
    arguments.removeLast(); // each argument is ended by a NUL
    QStringList texts;
    for (const QByteArray& argument : arguments)
        texts << textOfFileName(argument);
    return texts;
}

} // namespace havrel::platform
