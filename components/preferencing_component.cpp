// SPDX-License-Identifier: MIT
#include "components/preferencing_component.h"

namespace havrel {

PreferencingComponent::PreferencingComponent(const QByteArray& preferencesFile)
    : m_file(preferencesFile)
    , m_preferences(m_file.read())
{
    on("queryComponentPreferenceForKey:withReply:", [this](const XPCMessage& each) {
        const QVariant value = preference(each.values[0].toString());
        each.reply({QVariant(value.isValid() ? QVariantList{value} : QVariantList())});
    });
    on("setComponentPreferenceValue:forKey:withReply:", [this](const XPCMessage& each) {
        each.reply({setPreference(each.values[1].toString(), each.values[0].toList().value(0))});
    });
    answerAlways("queryListenerForCommandIdentifier:withInfo:withReply:", {QVariant(QVariantList())});
}

QVariant PreferencingComponent::preference(const QString& key) const
{
    const MutexLock guard(m_preferencesLock);
    return m_preferences.value(key);
}

bool PreferencingComponent::setPreference(const QString& key, const QVariant& value)
{
    const MutexLock guard(m_preferencesLock);
    QVariantMap changed = m_preferences;
    if (value.isValid())
        changed.insert(key, value);
    else
        changed.remove(key);
    if (!m_file.keep(changed))
        return false;
    m_preferences = changed;
    return true;
}

} // namespace havrel
