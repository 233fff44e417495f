// SPDX-License-Identifier: MIT
#include "app/service_options.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using namespace std::chrono_literals;

struct OptionsRow
{
    QByteArrayList arguments;
    int status;
    const char* text; // begin of the text; null: none
    std::chrono::milliseconds interval = 600s;
};

TEST(ServiceOptions, AreReadFromTheArguments)
{
    const OptionsRow rows[] = {
        {{}, 0, nullptr},
        {{"--help"}, 0, "Usage: havrel-service\n"},
        {{"--version"}, 0, "havrel-service "},
        {{"--idle-interval", "250"}, 0, nullptr, 250ms},
        {{"--idle-interval", "86400000"}, 0, nullptr, 24h},
        {{"--idle-interval"}, 2, "havrel-service: --idle-interval takes"},
        {{"--idle-interval", "0"}, 2, "havrel-service: --idle-interval takes"},
        {{"--idle-interval", "-1"}, 2, "havrel-service: --idle-interval takes"},
        {{"--idle-interval", "86400001"}, 2, "havrel-service: --idle-interval takes"},
        {{"--idle-interval", "1s"}, 2, "havrel-service: --idle-interval takes"},
        {{"--idle-interval", "1", "x"}, 2, "havrel-service: unknown argument"},
        {{"x"}, 2, "havrel-service: unknown argument"},
        {{""}, 2, "havrel-service: unknown argument"},
    };
    for (const OptionsRow& row : rows) {
        const ServiceOptions options = serviceOptionsOf(row.arguments);
        EXPECT_EQ(options.exitStatus, row.status) << row.arguments.join(' ').constData();
        EXPECT_EQ(options.idleInterval, row.interval);
        EXPECT_EQ(options.text.isNull(), row.text == nullptr);
        EXPECT_TRUE(options.text.startsWith(QLatin1StringView(row.text))) << options.text.toStdString();
    }
}

TEST(ServiceOptions, TellPeopleOnlyOfTwo)
{
    EXPECT_FALSE(serviceOptionsOf({"--help"}).text.contains(QStringLiteral("idle")));
}

} // namespace
} // namespace havrel::tests
