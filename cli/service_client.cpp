// SPDX-License-Identifier: MIT
#include "cli/service_client.h"

#include "foundation/error.h"
#include "foundation/service_address.h"
#include "fs/item_path.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace havrel::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// What a service that ends makes of calls that reach it.
constexpr std::array kEndings{
    "org.freedesktop.DBus.Error.NoReply",
    "org.freedesktop.DBus.Error.ServiceUnknown",
    "org.freedesktop.DBus.Error.UnknownObject",
};

bool hasEndedMeanwhile(const platform::BusReply& reply)
{
    return std::find(kEndings.begin(), kEndings.end(), reply.errorName) != kEndings.end();
}

QString whyThereIsNoBus(int error)
{
    if (error == ENOMEDIUM || error == ENOENT || error == ECONNREFUSED)
        return QStringLiteral("there is no session bus (log in to a desktop session, or set "
                              "DBUS_SESSION_BUS_ADDRESS): %1")
            .arg(systemErrorText(error));
    return QStringLiteral("cannot reach the session bus: %1").arg(systemErrorText(error));
}

QString whyItFailed(const platform::BusReply& reply)
{
    if (reply.errorName == service_address::kNoDisplay)
        return QStringLiteral("there is no display to show windows on (use it in a desktop session; when this is one, "
                              "the session bus does not know it: run dbus-update-activation-environment --systemd "
                              "DISPLAY XAUTHORITY WAYLAND_DISPLAY)");
    if (reply.errorName == "org.freedesktop.DBus.Error.ServiceUnknown")
        return QStringLiteral("the Havrel service is not installed (the session bus does not know %1)")
            .arg(QLatin1StringView(service_address::kBusName));
    if (!reply.errorText.isEmpty())
        return QStringLiteral("the Havrel service cannot be started or does not answer: %1").arg(reply.errorText);
    return QStringLiteral("the Havrel service does not answer: %1").arg(systemErrorText(reply.error));
}

/// Without the "./" that people and completions put before names.
QByteArray absolutePath(QByteArray path, const QByteArray& workingFolder)
{
    if (path.startsWith('/'))
        return path;
    while (path.startsWith("./"))
        path.remove(0, 2);
    while (path.startsWith('/'))
        path.remove(0, 1);
    const QByteArray folder = workingFolder.endsWith('/') ? workingFolder : workingFolder + '/';
    return withoutTrailingSlashes(path == "." ? folder : folder + path);
}

QByteArray activationToken()
{
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

} // namespace

ServiceClient::ServiceClient(milliseconds deadline)
    : m_end(steady_clock::now() + deadline)
    , m_bus({.limit = deadline})
{
}

milliseconds ServiceClient::left() const
{
    const auto rest = std::chrono::duration_cast<milliseconds>(m_end - steady_clock::now());
    return std::max(rest, milliseconds(1));
}

platform::BusReply ServiceClient::call(const QByteArray& member, const Pasteboard& pasteboard)
{
    return m_bus.callAndWait({.destination = service_address::kBusName,
                              .path = service_address::kObjectPath,
                              .interface = service_address::kInterface,
                              .member = member,
                              .body = {"a{say}", {dictionaryOf(pasteboard)}},
                              .limit = left()});
}

QString ServiceClient::ask(const QByteArray& member, const Pasteboard& pasteboard)
{
    if (const int error = m_bus.open(); error != 0)
        return whyThereIsNoBus(error);
    platform::BusReply reply = call(member, pasteboard);
    if (hasEndedMeanwhile(reply) && left() > milliseconds(1))
        reply = call(member, pasteboard);
    return reply.error == 0 ? QString() : whyItFailed(reply);
}

Pasteboard pasteboardOfItems(const QByteArrayList& paths, const QByteArray& workingFolder)
{
    QByteArray uris;
    for (const QByteArray& each : paths)
        uris += fileURIOfPath(absolutePath(each, workingFolder)) + "\r\n";
    Pasteboard pasteboard{{pasteboard::kUriList, uris}};
    if (const QByteArray token = activationToken(); !token.isEmpty())
        pasteboard.insert(pasteboard::kActivationToken, token);
    return pasteboard;
}

} // namespace havrel::cli
