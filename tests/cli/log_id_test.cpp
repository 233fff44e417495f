// SPDX-License-Identifier: MIT
#include "tests/support/program_run.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel::tests {
namespace {

struct Row
{
    const char* text;
    const char* json;
};

TEST(LogId, TakesIdentitiesApart)
{
    constexpr auto kRows = std::to_array<Row>({
        {"6", R"({"text":"6","depth":0,"application":6,"sequence":6,"hash":"1688849860263960"})"},
        {"6..3", R"({"text":"6.0.3","depth":2,"application":6,"sequence":3,"hash":"870813209198604"})"},
        {"6.3.", R"({"text":"6.3","depth":1,"application":6,"sequence":3,"hash":"1055531162664972"})"},
        {"6.a", R"({"text":"6.49","depth":1,"application":6,"sequence":49,"hash":"14003380091355332"})"},
        {"6./",
         R"({"text":"6.18446744073709551615","depth":1,"application":6,"sequence":18446744073709551615,)"
         R"("hash":"70368744177660"})"},
        {"6.73946250.4312.17.2",
         R"({"text":"6.73946250.4312.17.2","depth":4,"application":6,"sequence":2,"hash":"3776555672401870856"})"},
    });
    for (const Row& row : kRows) {
        const RunResult result = run({"log", "id", row.text});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output.toStdString(), std::string(row.json) + '\n');
    }
}

TEST(LogId, RefusesTheEmptyTextAndGoesOn)
{
    const RunResult result = run({"log", "id", "--json", "", "6"});

    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.output.startsWith("{\"text\":\"6\"")) << result.output.constData();
    EXPECT_EQ(result.errors, "havrel: \"\": the empty text is no identity\n");
}

} // namespace
} // namespace havrel::tests
