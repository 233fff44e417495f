// SPDX-License-Identifier: MIT
#include "diagnostics/process_lines.h"

#include "foundation/process.h"
#include "platform/host.h"
#include "platform/identity.h"
#include "platform/own_process.h"

namespace havrel {

ProcessFacts ProcessFacts::current()
{
    return {.processName = platform::processName(),
            .operatingSystem = Process::readableOSVersion(),
            .architecture = QString::fromLatin1(platform::architectureName()),
            .parent = platform::parentProcessID(),
            .user = platform::identity().realUser(),
            .effectiveUser = platform::identity().effectiveUser(),
            .uptime = Process::upTimeInterval().count(),
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
