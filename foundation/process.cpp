// SPDX-License-Identifier: MIT
#include "foundation/process.h"

#include "diagnostics/logr.h"
#include "foundation/text_pipe_reader.h"
#include "platform/child_process.h"
#include "platform/file_names.h"
#include "platform/host.h"
#include "platform/identity.h"
#include "platform/os_release.h"

#include <optional>

namespace havrel {
namespace {

struct Captured
{
    bool hasNamedReleases = platform::host().systemName() != "Linux";
    PackedOSVersion version = platform::packedVersionOfRelease(platform::host().release());
    bool mojave = offersWhatCameWith(kMojave);
    bool catalina = offersWhatCameWith(kCatalina);
    bool bigSur = offersWhatCameWith(kBigSur);
    bool monterey = offersWhatCameWith(kMonterey);
    bool ventura = offersWhatCameWith(kVentura);
    bool sonoma = offersWhatCameWith(kSonoma);
    uid_t user = platform::identity().effectiveUser();
    gid_t group = platform::identity().effectiveGroup();

private:
    [[nodiscard]] bool offersWhatCameWith(PackedOSVersion release) const
    {
        return !hasNamedReleases || version >= release;
    }
};

Captured& captured()
{
    static Captured values;
    return values;
}

std::optional<bool> s_protected; // once asked for

QString& protectionTool()
{
    static QString path = QStringLiteral("/usr/bin/csrutil");
    return path;
}

QStringList linesFromProtectionTool()
{
    TextPipeReader reader;
    const auto tool = platform::launch(
        platform::bytesOfFileName(protectionTool()), {QByteArrayLiteral("status")}, reader.pipe().writeEnd.get());
    reader.closeWriteEnd();
    reader.startReading();
    return reader.lines();
}

bool askProtectionTool()
{
    const QStringList lines = linesFromProtectionTool();
    const bool enabled = !lines.isEmpty() && lines.first().contains(QStringLiteral("enabled"));
    const auto line = Logr::debugMessage(QStringLiteral("+[Process isSIPEnabled] SIP status=%1")
                                             .arg(enabled ? QStringLiteral("YES") : QStringLiteral("NO")));
    if (line)
        Logr::logKey(LogClassification::Debug, line, protectionTool(), lines);
    return enabled;
}

} // namespace

void Process::captureNow()
{
    captured() = Captured();
    s_protected.reset();
}

int Process::cpuCount()
{
    return platform::host().activeProcessors();
}

int Process::optimalConcurrentQueueSize()
{
    const int count = cpuCount();
    return count < 5 ? count + 1 : count;
}

std::chrono::duration<double> Process::upTimeInterval()
{
    const auto time = platform::host().timeSinceBoot();
    if (!time)
        qFatal("Assertion failed: (result == noErr), function +[Process upTimeInterval], file Process, line 231.");
    return *time;
}

bool Process::isPrivileged()
{
    return platform::identity().realUser() == 0;
}

uid_t Process::userID()
{
    return captured().user;
}

gid_t Process::groupID()
{
    return captured().group;
}

bool Process::isRunningAsUser()
{
    return platform::identity().effectiveUser() == userID();
}

bool Process::isRunningAsRoot()
{
    return platform::identity().effectiveUser() == 0;
}

bool Process::runAsRoot()
{
    if (isRunningAsRoot())
        return true;
    platform::Identity& mine = platform::identity();
    mine.setEffectiveUser(mine.realUser());
    mine.setEffectiveGroup(mine.realGroup());
    return isRunningAsRoot();
}

bool Process::runAsUser()
{
    if (!isRunningAsRoot() || userID() == 0)
        return true;
    // The group first: once root is given up, the kernel refuses a group that is neither the real nor the saved one,
    // and the process would go on with root's.
    platform::Identity& mine = platform::identity();
    mine.setEffectiveGroup(groupID());
    mine.setEffectiveUser(userID());
    return isRunningAsUser();
}

void Process::setAllowRootUser(bool /*allow*/) {}

PackedOSVersion Process::osVersion()
{
    return captured().version;
}

QString Process::readableOSVersion()
{
    const platform::Host& host = platform::host();
    const QString release = QString::fromUtf8(host.release());
    if (captured().hasNamedReleases)
        return prefixOfOSVersion(osVersion()) + release;
    const QString kernel = QStringLiteral("Linux ") + release;
    const QString name = platform::parseOSRelease(host.osRelease()).value(QByteArrayLiteral("PRETTY_NAME"));
    return name.isEmpty() ? kernel : name + QStringLiteral(", ") + kernel;
}

QString Process::osNickname()
{
    if (captured().hasNamedReleases)
        return nicknameOfOSVersion(osVersion());
    const QString name =
        platform::parseOSRelease(platform::host().osRelease()).value(QByteArrayLiteral("VERSION_CODENAME"));
    return name.isEmpty() ? QStringLiteral("Unknown") : name.at(0).toUpper() + name.mid(1);
}

bool Process::isOrLaterThanOSVersion(PackedOSVersion first, PackedOSVersion end)
{
    return first <= osVersion() && osVersion() < end;
}

bool Process::isMojaveOrLater()
{
    return captured().mojave;
}

bool Process::isCatalinaOrLater()
{
    return captured().catalina;
}

bool Process::isBigSurOrLater()
{
    return captured().bigSur;
}

bool Process::isMontereyOrLater()
{
    return captured().monterey;
}

bool Process::isVenturaOrLater()
{
    return captured().ventura;
}

bool Process::isSonomaOrLater()
{
    return captured().sonoma;
}

bool Process::isSIPEnabled()
{
    if (!s_protected)
        s_protected = askProtectionTool();
    return *s_protected;
}

void Process::setProtectionTool(const QString& path)
{
    protectionTool() = path;
}

} // namespace havrel
