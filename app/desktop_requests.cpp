// SPDX-License-Identifier: MIT
#include "app/desktop_requests.h"

namespace havrel {
namespace {

struct Action
{
    QLatin1StringView name;
    ServiceRequest request;
};

/// \source resources/com.havrel.Service.desktop
constexpr Action kActions[] = {
    {QLatin1StringView("reveal"), &ServiceRequests::revealInArchive},
    {QLatin1StringView("capture"), &ServiceRequests::captureToArchive},
    {QLatin1StringView("preferences"), &ServiceRequests::setCapturePreferences},
};

constexpr QLatin1StringView kTokens[] = {
    QLatin1StringView("activation-token"),
    QLatin1StringView("desktop-startup-id"),
};

/// One line of the list: line breaks, which no URI has, are encoded, so that one URI stays one.
QByteArray lineOf(const QString& uri)
{
    return uri.toUtf8().replace('\r', "%0D").replace('\n', "%0A") + "\r\n";
}

QByteArray tokenIn(const QVariantMap& platformData)
{
    for (const QLatin1StringView each : kTokens)
        if (const QVariant token = platformData.value(each); token.typeId() == QMetaType::QString)
            return token.toString().toUtf8();
    return {};
}

} // namespace

ServiceRequest requestOfAction(const QString& name)
{
    for (const Action& each : kActions)
        if (each.name == name)
            return each.request;
    return nullptr;
}

Pasteboard pasteboardOf(const QStringList& uris, const QVariantMap& platformData)
{
    Pasteboard pasteboard;
    for (const QString& each : uris)
        pasteboard[pasteboard::kUriList] += lineOf(each);
    if (const QByteArray token = tokenIn(platformData); !token.isEmpty())
        pasteboard.insert(pasteboard::kActivationToken, token);
    return pasteboard;
}

QStringList urisInParameter(const QVariantList& parameter)
{
    QStringList uris;
    for (const QVariant& each : parameter)
        if (each.typeId() == QMetaType::QString || each.typeId() == QMetaType::QStringList)
            uris += each.toStringList();
    return uris;
}

} // namespace havrel
