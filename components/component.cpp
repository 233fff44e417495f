// SPDX-License-Identifier: MIT
#include "components/component.h"

#include <QStringList>

#include <utility>

namespace havrel {

Component::Component()
{
    answerAlways("barrierWithCompletion:", {});
    answerAlways("queryComponentVersionWithReply:", {componentVersion()});
    answerAlways("queryBuildNumberWithReply:", {componentBuildNumber()});
    answerAlways("didInstallComponent", {});
    answerAlways("willUninstallComponent", {});
}

void Component::received(const XPCMessage& message)
{
    if (const auto handler = m_handlers.find(message.keywordName); handler != m_handlers.cend())
        handler->second(message);
}

bool Component::handles(const QByteArray& keywordName) const
{
    return m_handlers.contains(keywordName);
}

void Component::on(const char* keywordName, Handler handler)
{
    m_handlers[keywordName] = std::move(handler);
}

void Component::answerAlways(const char* keywordName, const QVariantList& values)
{
    on(keywordName, [values](const XPCMessage& message) {
        if (message.reply)
            message.reply(values);
    });
}

QString componentVersion()
{
    return QStringLiteral(HAVREL_VERSION);
}

quint32 componentBuildNumber()
{
    quint32 number = 0;
    for (const QString& each : componentVersion().split(u'.'))
        number = number * 100 + each.toUInt();
    return number;
}

} // namespace havrel
