// SPDX-License-Identifier: MIT
// What the subcommand logs, which the program sends to a place of the user's choice: therefore run in this process.
#include "cli/command.h"
#include "cli/subcommands.h"
#include "tests/cli/captureprefs_fixture.h"
#include "tests/support/recording_logr.h"

#include <array>
#include <vector>

namespace havrel::tests {
namespace {

class CaptureprefsSet : public Captureprefs
{
protected:
    [[nodiscard]] cli::ExitStatus setPatterns(int count) const
    {
        constexpr auto kGroups = std::to_array<cli::SubcommandGroup>({{"captureprefs", "Preferences"}});
        constexpr auto kSubcommands =
            std::to_array<cli::Subcommand>({{"captureprefs", "set", "Change", cli::defineCaptureprefsSet}});
        QByteArrayList texts{"captureprefs", "set", "--force", "--exclude", m_tree.bytes("file")};
        for (int i = 0; i < count; ++i)
            texts << "--add-pattern"
                  << "//" + QByteArray::number(i).rightJustified(14, 'x');
        std::vector<const char*> arguments;
        for (const QByteArray& each : texts)
            arguments.push_back(each.constData());
        return cli::runSubcommand(arguments, kGroups, kSubcommands);
    }

    const std::shared_ptr<RecordingLogr> m_log = std::make_shared<RecordingLogr>();
    const SharedLoggerScope m_logScope{m_log};
};

TEST_F(CaptureprefsSet, LogsThatARecordIsLongerThanReadersTake)
{
    ASSERT_EQ(setPatterns(43), cli::ExitStatus::Done);

    EXPECT_EQ(attributeOf("file").bytes.size(), 1029);
    const QStringList lines = m_log->lines();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines.first().contains(QStringLiteral(" Caution "))) << lines.first().toStdString();
    EXPECT_TRUE(lines.first().contains(QString::fromUtf8(m_tree.bytes("file")))) << lines.first().toStdString();
}

TEST_F(CaptureprefsSet, LogsNothingOfARecordThatReadersTake)
{
    ASSERT_EQ(setPatterns(42), cli::ExitStatus::Done);

    EXPECT_EQ(m_log->lines(), QStringList());
}

} // namespace
} // namespace havrel::tests
