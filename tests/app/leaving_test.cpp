// SPDX-License-Identifier: MIT
#include "foundation/service_address.h"
#include "platform/bus_connection.h"
#include "tests/support/private_bus.h"
#include "tests/support/temporary_tree.h"

#include <QByteArrayList>
#include <QFile>

#include <gtest/gtest.h>

#include <chrono>

namespace havrel {
namespace {

using platform::BusConnection;
using platform::BusReply;

constexpr std::chrono::seconds kDeadline{60};

/// A bus that starts the service which leaves at once.
class Leaving : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_bus.addService(service_address::kBusName, HAVREL_LEAVING_SERVICE " " + m_tree.path("lines"));
        ASSERT_EQ(m_client.open(), 0);
    }
    BusReply ask(const QByteArray& line)
    {
        const QVariantMap pasteboard{{QStringLiteral("text/plain"), line}};
        return m_client.callAndWait({.destination = service_address::kBusName,
                                     .path = service_address::kObjectPath,
                                     .interface = service_address::kInterface,
                                     .member = service_address::kReveal,
                                     .body = {"a{say}", {pasteboard}},
                                     .limit = kDeadline});
    }
    /// Passes the time of \p rounds questions to the bus: more and more of them lead through the service's last
    /// moments.
    void passTime(int rounds)
    {
        for (int i = 0; i < rounds; ++i)
            ASSERT_EQ(m_client.barrier(kDeadline), 0);
    }
    /// The lines that the services wrote, once there are \p count.
    QByteArrayList lines(qsizetype count)
    {
        const auto end = std::chrono::steady_clock::now() + kDeadline;
        QByteArrayList found;
        do {
            passTime(1);
            QFile file(QString::fromStdString(m_tree.path("lines")));
            if (file.open(QIODevice::ReadOnly))
                found = file.readAll().split('\n');
        } while (found.size() <= count && std::chrono::steady_clock::now() < end);
        found.removeAll(QByteArray());
        return found;
    }

    TemporaryTree m_tree;
    tests::PrivateBus m_bus;
    BusConnection m_client{{.address = m_bus.address()}};
};

TEST_F(Leaving, LosesNoneOfTwelveHundredCallsThatAimAtIt)
{
    constexpr int kCalls = 1'200;
    constexpr int kRounds = 40; // of about a tenth of a millisecond each
    QByteArrayList asked;
    for (int i = 0; i < kCalls; ++i) {
        asked.append(QByteArray::number(i));
        const BusReply reply = ask(asked.last());
        ASSERT_EQ(reply.error, 0) << i << ": " << reply.errorName.constData() << " " << qPrintable(reply.errorText);
        passTime(i % kRounds);
    }
    EXPECT_EQ(lines(kCalls), asked);
}

} // namespace
} // namespace havrel
