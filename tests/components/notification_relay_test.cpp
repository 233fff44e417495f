// SPDX-License-Identifier: MIT
#include "components/notification_relay.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <utility>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr NotificationRelay::Client kAnna = 1;
constexpr NotificationRelay::Client kBert = 2;

bool everybody(uid_t)
{
    return true;
}

class ANotificationRelay : public ::testing::Test
{
protected:
    ANotificationRelay()
    {
        m_relay.addClient(kAnna, 100, forwarding(u"anna"_s));
        m_relay.addClient(kBert, 200, forwarding(u"bert"_s));
    }
    NotificationRelay::Forward forwarding(const QString& client)
    {
        return [this, client](const QString& observer, const RelayedNotification& each) {
            m_told << client + u'.' + observer + u' ' + each.name + u' ' + each.source.value_or(u"-"_s);
        };
    }
    QStringList told(const QString& name,
                     const std::optional<QString>& source = {},
                     const NotificationRelay::Audience& audience = everybody)
    {
        m_relay.post({name, source, {}}, audience);
        return std::exchange(m_told, {});
    }

    NotificationRelay m_relay;
    QStringList m_told;
};

TEST_F(ANotificationRelay, TellsNobodyWhoHasNotAsked)
{
    EXPECT_EQ(told(u"N"_s), QStringList());
}

TEST_F(ANotificationRelay, TellsObserversOfTheNameThatWantTheSource)
{
    m_relay.addObserver(kAnna, u"any"_s, u"N"_s, std::nullopt);
    m_relay.addObserver(kAnna, u"clock"_s, u"N"_s, u"Clock"_s);
    m_relay.addObserver(kBert, u"nobody"_s, u"N"_s, u""_s);
    m_relay.addObserver(kBert, u"other"_s, u"M"_s, std::nullopt);

    EXPECT_EQ(told(u"N"_s, u"Clock"_s), (QStringList{u"anna.any N Clock"_s, u"anna.clock N Clock"_s}));
    EXPECT_EQ(told(u"N"_s), QStringList{u"anna.any N -"_s});
    EXPECT_EQ(told(u"N"_s, u""_s), (QStringList{u"anna.any N "_s, u"bert.nobody N "_s})) << "an empty source is one";
    EXPECT_EQ(told(u"n"_s), QStringList());
}

TEST_F(ANotificationRelay, TellsAnObserverOncePerIdentifier)
{
    m_relay.addObserver(kAnna, u"a"_s, u"N"_s, std::nullopt);
    m_relay.addObserver(kAnna, u"a"_s, u"N"_s, std::nullopt);
    m_relay.addObserver(kBert, u"a"_s, u"N"_s, std::nullopt);

    EXPECT_EQ(told(u"N"_s), (QStringList{u"anna.a N -"_s, u"bert.a N -"_s}));
    m_relay.addObserver(kAnna, u"a"_s, u"M"_s, std::nullopt);
    EXPECT_EQ(told(u"N"_s), QStringList{u"bert.a N -"_s});
}

TEST_F(ANotificationRelay, ForgetsObserversAndClients)
{
    for (const QString& each : {u"a"_s, u"b"_s, u"c"_s}) {
        m_relay.addObserver(kAnna, each, u"N"_s, std::nullopt);
        m_relay.addObserver(kBert, each, u"N"_s, std::nullopt);
    }

    m_relay.removeObserver(kAnna, u"b"_s);
    m_relay.removeObserver(kAnna, u"unknown"_s);
    m_relay.removeClient(kBert);
    EXPECT_EQ(told(u"N"_s), (QStringList{u"anna.a N -"_s, u"anna.c N -"_s}));
    m_relay.removeAllObservers(kAnna);
    EXPECT_EQ(told(u"N"_s), QStringList());
    m_relay.addObserver(kAnna, u"a"_s, u"N"_s, std::nullopt);
    EXPECT_EQ(told(u"N"_s), QStringList{u"anna.a N -"_s}) << "who has no observers is still there";
}

TEST_F(ANotificationRelay, DoesNothingForClientsThatHaveGone)
{
    m_relay.removeClient(kAnna);

    m_relay.addObserver(kAnna, u"a"_s, u"N"_s, std::nullopt);
    m_relay.removeObserver(kAnna, u"a"_s);
    m_relay.removeAllObservers(kAnna);
    m_relay.setUser(kAnna, 300);
    m_relay.removeClient(kAnna);

    EXPECT_EQ(told(u"N"_s), QStringList());
}

TEST_F(ANotificationRelay, AsksForWhomAClientWorks)
{
    m_relay.addObserver(kAnna, u"a"_s, u"N"_s, std::nullopt);
    m_relay.addObserver(kBert, u"b"_s, u"N"_s, std::nullopt);
    const auto onlyOf = [](uid_t wanted) { return [wanted](uid_t user) { return user == wanted; }; };

    EXPECT_EQ(told(u"N"_s, {}, onlyOf(200)), QStringList{u"bert.b N -"_s});
    m_relay.setUser(kAnna, 200);
    EXPECT_EQ(told(u"N"_s, {}, onlyOf(200)), (QStringList{u"anna.a N -"_s, u"bert.b N -"_s}));
    EXPECT_EQ(told(u"N"_s, {}, onlyOf(100)), QStringList());
}

} // namespace
} // namespace havrel
