// SPDX-License-Identifier: MIT
#include "diagnostics/process_lines.h"

#include "platform/host.h"
#include "platform/identity.h"
#include "platform/os_release.h"
#include "platform/own_process.h"

namespace havrel {

namespace {

/// "Debian GNU/Linux 12 (bookworm), Linux 6.1.0-30-amd64"
QString operatingSystemText(const platform::Host& host)
{
    const QString distribution =
        platform::parseOSRelease(host.osRelease()).value("PRETTY_NAME", QStringLiteral("Linux"));
    return distribution + QStringLiteral(", ") + QString::fromUtf8(host.systemName() + ' ' + host.release());
}

double secondsUp(const platform::Host& host)
{
    const auto up = host.timeSinceBoot();
    return up ? std::chrono::duration<double>(*up).count() : 0;
}

} // namespace

ProcessFacts ProcessFacts::current()
{
    return {.processName = platform::processName(),
            .operatingSystem = operatingSystemText(platform::host()),
            .architecture = QString::fromLatin1(platform::architectureName()),
            .parent = platform::parentProcessID(),
            .user = platform::identity().realUser(),
            .effectiveUser = platform::identity().effectiveUser(),
            .uptime = secondsUp(platform::host()),
            .arguments = platform::processArguments()};
}

LogLineIdentPtr writeStartProcess(Logr& logger, const QString& name, const ProcessFacts& facts)
{
    constexpr auto kDebug = LogClassification::Debug;
    auto line = logger.writeLine(kDebug, nullptr, QStringLiteral("started ") + name);
    if (!line)
        return line;
    logger.writeKey(kDebug, line, QStringLiteral("id"), facts.processName);
    logger.writeKey(kDebug, line, QStringLiteral("os"), facts.operatingSystem);
    logger.writeKey(kDebug, line, QStringLiteral("arch"), facts.architecture);
    logger.writeFormat(kDebug, line, "ppid: {}", facts.parent);
    logger.writeFormat(kDebug, line, "uid: {}", facts.user);
    if (facts.effectiveUser != facts.user)
        logger.writeFormat(kDebug, line, "euid: {}", facts.effectiveUser);
    logger.writeKey(kDebug, line, QStringLiteral("up"), facts.uptime);
    logger.writeKey(kDebug, line, QStringLiteral("args"), facts.arguments);
    return line;
}

LogLineIdentPtr writeStopProcess(Logr& logger, const QString& name, int exitStatus)
{
    if (exitStatus == 0)
        return logger.writeFormat(LogClassification::Debug, nullptr, "stopping {}", name);
    return logger.writeFormat(
        LogClassification::Debug, nullptr, "stopping {}, exiting with status {}", name, exitStatus);
}

} // namespace havrel
