// SPDX-License-Identifier: MIT
#include "platform/process_identity.h"

#include "platform/file_names.h"

#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <ctime>

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

uid_t userID()
{
    return ::getuid();
}

uid_t effectiveUserID()
{
    return ::geteuid();
}

QStringList processArguments()
{
    QFile file(QStringLiteral("/proc/self/cmdline"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> arguments = file.readAll().split('\0');
    arguments.removeLast(); // each argument is ended by a NUL
    QStringList texts;
    for (const QByteArray& argument : arguments)
        texts << textOfFileName(argument);
    return texts;
}

QString processName()
{
    return textOfFileName(::program_invocation_short_name);
}

double systemUptime()
{
    timespec since{};
    if (::clock_gettime(CLOCK_BOOTTIME, &since) != 0)
        return 0;
    return static_cast<double>(since.tv_sec) + static_cast<double>(since.tv_nsec) / 1e9;
}

QString operatingSystemText()
{
    return QSysInfo::prettyProductName() + QStringLiteral(", Linux ") + QSysInfo::kernelVersion();
}

QString architectureName()
{
    const QString architecture = QSysInfo::buildCpuArchitecture();
    return architecture == QStringLiteral("x86_64") ? architecture : QStringLiteral("arm64");
}

} // namespace havrel::platform
