// SPDX-License-Identifier: MIT
#include "platform/own_process.h"

#include "platform/file_contents.h"
#include "platform/file_names.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

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

QByteArray workingFolder()
{
    struct Free
    {
        void operator()(char* text) const noexcept { std::free(text); }
    };
    const std::unique_ptr<char, Free> folder(::getcwd(nullptr, 0));
    return {folder.get()};
}

} // namespace havrel::platform
