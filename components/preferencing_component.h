// SPDX-License-Identifier: MIT
#pragma once

#include "components/component.h"
#include "components/kept_dictionary.h"
#include "foundation/thread_annotations.h"

namespace havrel {

/// A component with preferences (protocols::componentPreferencing), which it keeps, and without listeners for commands
/// (protocols::commandListenerServiceProvider): there are no commands here that could be listened to.
///
/// Threads: as its base.
class PreferencingComponent : public Component
{
protected:
    /// \param preferencesFile where they are kept
    explicit PreferencingComponent(const QByteArray& preferencesFile);

    /// An invalid value when there is none.
    [[nodiscard]] QVariant preference(const QString& key) const HAVREL_EXCLUDES(m_preferencesLock);
    /// \param value invalid: none any more. \return whether it is kept; if not, nothing has changed
    bool setPreference(const QString& key, const QVariant& value) HAVREL_EXCLUDES(m_preferencesLock);

private:
    mutable Mutex m_preferencesLock;
    const KeptDictionary m_file;
    QVariantMap m_preferences HAVREL_GUARDED_BY(m_preferencesLock);
};

} // namespace havrel
