// SPDX-License-Identifier: MIT
#include "tests/support/program_run.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

/// A user with nothing but a home.
class Integrations : public testing::Test
{
protected:
    [[nodiscard]] RunResult runHere(const QByteArrayList& arguments) const
    {
        return run(QByteArrayList{"integrations"} + arguments,
                   {.environment = {"HOME=" + m_tree.bytes(""),
                                    "XDG_DATA_HOME=" + m_tree.bytes("data"),
                                    "XDG_CONFIG_HOME=" + m_tree.bytes("config"),
                                    "XDG_DATA_DIRS=" + m_tree.bytes("share"),
                                    "XDG_CONFIG_DIRS=" + m_tree.bytes("etc"),
                                    "PATH=" + m_tree.bytes("bin")}});
    }

    const TemporaryTree m_tree{"bin/"};
};

TEST_F(Integrations, ShowsALineForEachFileManager)
{
    const RunResult words = runHere({});
    EXPECT_EQ(words.status, 0);
    EXPECT_EQ(words.output.count('\n'), 7) << words.output.constData();
    const RunResult json = runHere({"--json"});
    EXPECT_EQ(json.output.count('\n'), 6);
    EXPECT_TRUE(json.output.contains("{\"name\":\"dolphin\",\"installed\":false,\"menu\":null,\"outdated\":false,"
                                     "\"way\":\"service menu\",\"package\":null,\"packageMissing\":false,"
                                     "\"needsRestart\":false,\"fault\":null}\n"))
        << json.output.constData();
}

TEST_F(Integrations, AddsAndRemovesWhatIsNamed)
{
    const RunResult added = runHere({"add", "Dolphin", "thunar"});
    EXPECT_EQ(added.status, 0) << added.errors.constData();
    const QByteArray file = m_tree.bytes("data/kio/servicemenus/havrel.desktop");
    EXPECT_TRUE(added.output.startsWith("Dolphin: added " + file + '\n')) << added.output.constData();
    EXPECT_TRUE(runHere({"--json"}).output.contains("\"name\":\"dolphin\",\"installed\":false,\"menu\":\"user\""));
    EXPECT_EQ(runHere({"add", "dolphin"}).output, "Dolphin: nothing to do\n");
    EXPECT_EQ(runHere({"remove", "dolphin"}).output, "Dolphin: removed from " + file + '\n');
    EXPECT_TRUE(runHere({"--json"}).output.contains("\"name\":\"dolphin\",\"installed\":false,\"menu\":null"));
}

TEST_F(Integrations, SaysWhatItDoesNotRemoveBecauseItWasInstalled)
{
    m_tree.add("data/kio/servicemenus/");
    m_tree.write("data/kio/servicemenus/havrel.desktop", "[Desktop Entry]\n");
    EXPECT_EQ(runHere({"remove", "dolphin"}).output,
              "Dolphin: kept, because it was installed and not added: " +
                  m_tree.bytes("data/kio/servicemenus/havrel.desktop") + '\n');
}

TEST_F(Integrations, TellsWhatItCannotChange)
{
    m_tree.add("config/Thunar/");
    m_tree.write("config/Thunar/uca.xml", "<actions>");
    const RunResult removed = runHere({"remove", "thunar"});
    EXPECT_EQ(removed.status, 1);
    EXPECT_TRUE(removed.errors.startsWith("havrel: " + m_tree.bytes("config/Thunar/uca.xml") + ": line 1: "))
        << removed.errors.constData();
    EXPECT_TRUE(removed.errors.endsWith("; nothing was changed\n"));
}

TEST_F(Integrations, ChangesNothingWhenItDoesNotUnderstand)
{
    for (const QByteArrayList& arguments : {QByteArrayList{"add"},
                                            QByteArrayList{"remove"},
                                            QByteArrayList{"change", "thunar"},
                                            QByteArrayList{"add", "dolphin", "nonsense"},
                                            QByteArrayList{"add", "dolphin", "--json"}}) {
        const RunResult result = runHere(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').constData();
        EXPECT_EQ(result.errors.count('\n'), 1);
    }
    EXPECT_TRUE(runHere({"--json"}).output.contains("\"name\":\"dolphin\",\"installed\":false,\"menu\":null"));
}

} // namespace
} // namespace havrel::tests
