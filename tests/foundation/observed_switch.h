// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

namespace havrel {

/// An object of a class that knows nothing of observation and tells by NOTIFY signals.
class ObservedSwitch : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int level READ level WRITE setLevel NOTIFY levelChanged)
    Q_PROPERTY(QObject* partner READ partner WRITE setPartner NOTIFY partnerChanged)
    Q_PROPERTY(int silent READ level WRITE setLevel)

public:
    [[nodiscard]] int level() const { return m_level; }
    void setLevel(int level)
    {
        m_level = level;
        Q_EMIT levelChanged(level);
    }
    [[nodiscard]] QObject* partner() const { return m_partner; }
    void setPartner(QObject* partner)
    {
        m_partner = partner;
        Q_EMIT partnerChanged();
    }
    [[nodiscard]] bool isListenedTo() const { return receivers(SIGNAL(levelChanged(int))) > 0; }

    Q_SIGNAL void levelChanged(int level);
    Q_SIGNAL void partnerChanged();

private:
    int m_level = 0;
    QObject* m_partner = nullptr;
};

} // namespace havrel
