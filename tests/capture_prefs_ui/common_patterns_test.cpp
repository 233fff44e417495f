// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/common_patterns.h"

#include "filters/pattern_filter_def.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

PatternFilterDefs patterns(const char* lines)
{
    return PatternFilterDef::filterDefsFromStrings(QString::fromLatin1(lines).split(u' ', Qt::SkipEmptyParts),
                                                   PatternFilterDef::itemEnvironment());
}

std::string texts(const PatternFilterDefs& definitions)
{
    QStringList lines;
    for (const PatternFilterDefPtr& each : definitions)
        lines.append(each->canonicalPattern());
    return lines.join(u' ').toStdString();
}

TEST(CommonPatterns, AreThoseThatEveryFolderHas)
{
    struct Row
    {
        std::vector<const char*> folders;
        const char* common;
        bool differ;
    };
    const Row rows[] = {
        {{}, "", false},
        {{""}, "", false},
        {{"//b //a"}, "//b //a", false},
        {{"//a //a"}, "//a", false},
        {{"//b //a", "//a //b"}, "//b //a", false},
        {{"//a //b", "//b"}, "//b", true},
        {{"//b", "//a //b"}, "//b", true},
        {{"", "//a"}, "", true},
        {{"//a", ""}, "", true},
        {{"//a", "//b"}, "", true},
        {{"//a //b //c", "//c //a", "//a"}, "//a", true},
        {{"//a/+:re", "//a"}, "", true},
    };
    for (const Row& row : rows) {
        CommonPatterns common;
        for (const char* each : row.folders)
            common.intersect(patterns(each));
        EXPECT_EQ(texts(common.patterns().inOrder()), row.common);
        EXPECT_EQ(common.differ(), row.differ) << row.common;
    }
}

TEST(CommonPatterns, LeaveEachFolderItsOwn)
{
    struct Row
    {
        const char* edited;
        const char* own;
        const char* common;
        const char* merged;
    };
    const Row rows[] = {
        {"//a", "//a //x", "//a", "//a //x"},
        {"", "//a //x", "//a", "//x"},
        {"//new", "//a //y //x", "//a", "//new //y //x"},
        {"//x //a", "//a //x //y", "//a", "//x //a //y"},
        {"//a", "", "", "//a"},
        {"//a", "//x //x", "", "//a //x"},
        {"", "//x //a //x //y //a", "//a", "//x //y"},
        {"//a //a", "//x", "//a", "//a //a //x"},
        {"//b //a", "//a //y //b //x", "//a //b", "//b //a //y //x"},
        {"//y //b //x //a", "//a //y //b //x //z", "//a //b", "//y //b //x //a //z"},
        {"//y //y", "//y //a", "//a", "//y //y"},
    };
    for (const Row& row : rows) {
        const PatternSet common(patterns(row.common));
        const PatternFilterDefs own = ownPatterns(patterns(row.own), common);
        EXPECT_EQ(texts(withOwnPatterns(patterns(row.edited), own, common)), row.merged);
    }
}

TEST(PatternSet, HoldsPatternsThatAreNoneToo)
{
    const auto empty = std::make_shared<PatternFilterDef>();
    const auto other = std::make_shared<PatternFilterDef>();
    PatternSet set({empty});
    EXPECT_TRUE(set.contains(other)) << "two empty globs are equal";
    set.add(other);
    EXPECT_EQ(set.inOrder().size(), 1);
    EXPECT_FALSE(set.contains(std::make_shared<PatternFilterDef>(PatternType::RegularExpression)));
}

} // namespace
} // namespace havrel::tests
