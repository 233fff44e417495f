// SPDX-License-Identifier: MIT
#include "platform/applications.h"

#include "platform/file_contents.h"
#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/stat.h>

namespace havrel::tests {
namespace {

class RecordingBus final : public platform::BusApplications
{
public:
    bool canReach(const QByteArray& id) override { return id == m_reached; }
    int activate(const QByteArray& id) override
    {
        m_calls << "activate " + id;
        return m_failure;
    }
    int open(const QByteArray& id, const platform::OpenRequest& request) override
    {
        m_calls << "open " + id + ' ' + request.uris.join(' ') + ' ' + QByteArray::number(request.parameters.number) +
                       ' ' + request.parameters.items.join(' ');
        return m_failure;
    }

    QByteArray m_reached;
    QByteArrayList m_calls;
    int m_failure = 0;
};

/// An application "c" whose program is a shell that writes its arguments into a named pipe.
class Applications : public ::testing::Test
{
protected:
    void install(const QByteArray& exec) const
    {
        m_tree.add("applications/c.desktop");
        m_tree.write("applications/c.desktop", "[Desktop Entry]\nType=Application\nExec=" + exec.toStdString() + "\n");
    }
    void installShell() const { install(R"(sh -c "printf '%%s|' \\"\\$@\\" > ')" + m_pipe + R"('" sh %u)"); }

    TemporaryTree m_tree{"applications/"};
    QByteArray m_pipe = m_tree.bytes("pipe");
    EnvironmentValue m_home{"XDG_DATA_HOME", m_tree.bytes(".")};
    EnvironmentValue m_dirs{"XDG_DATA_DIRS", "/nowhere"};
    RecordingBus m_bus;
    platform::DesktopApplications m_applications{m_bus};
    platform::OpenRequest m_request{{"file:///a%20b"}, {1, {"/x", "/bad\xff"}}};
};

TEST_F(Applications, AreInstalledWhenTheBusOrADesktopFileKnowsThem)
{
    EXPECT_FALSE(m_applications.isInstalled("c"));
    m_bus.m_reached = "c";
    EXPECT_TRUE(m_applications.isInstalled("c"));
    m_bus.m_reached = "d";
    EXPECT_FALSE(m_applications.isInstalled("c"));
    install("x");
    EXPECT_TRUE(m_applications.isInstalled("c"));
}

TEST_F(Applications, AreReachedByTheBusWhereTheyCanBe)
{
    installShell();
    m_bus.m_reached = "c";
    EXPECT_EQ(m_applications.launch("c"), 0);
    EXPECT_EQ(m_applications.open("c", m_request), 0);
    EXPECT_EQ(m_bus.m_calls, (QByteArrayList{"activate c", "open c file:///a%20b 1 /x /bad\xff"}));
    m_bus.m_failure = ENOTCONN;
    EXPECT_EQ(m_applications.launch("c"), ENOTCONN);
    EXPECT_EQ(m_applications.open("c", m_request), ENOTCONN);
}

TEST_F(Applications, AreStartedByTheirCommandElse)
{
    ASSERT_EQ(::mkfifo(m_pipe.constData(), 0600), 0);
    installShell();
    EXPECT_EQ(m_applications.open("c", m_request), 0);
    EXPECT_EQ(platform::readFile(m_pipe).bytes, "file:///a%20b|");
    EXPECT_EQ(m_applications.launch("c"), 0);
    EXPECT_EQ(platform::readFile(m_pipe).bytes, "|");
    EXPECT_EQ(m_bus.m_calls, QByteArrayList());
}

TEST_F(Applications, TellWhyTheyCannotBeStarted)
{
    EXPECT_EQ(m_applications.launch("c"), ENOENT);
    EXPECT_EQ(m_applications.open("c", m_request), ENOENT);
    install("\"never closed");
    EXPECT_EQ(m_applications.launch("c"), EINVAL);
    install("no-such-program-of-ours");
    EXPECT_EQ(m_applications.launch("c"), ENOENT);
}

} // namespace
} // namespace havrel::tests
