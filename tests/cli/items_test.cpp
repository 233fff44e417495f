// SPDX-License-Identifier: MIT
#include "cli/items.h"

#include <gtest/gtest.h>

#include <array>

namespace havrel::cli {
namespace {

struct ItemRow
{
    const char* label;
    QByteArray item;
    QByteArray path; // empty: refused
};

const std::array kItems = {
    ItemRow{"plain", "a/b", "a/b"},
    ItemRow{"one_slash_at_the_end", "link/", "link"},
    ItemRow{"many_slashes_at_the_end", "a//b///", "a//b"},
    ItemRow{"dot_at_the_end", "link/.", "link"},
    ItemRow{"dots_and_slashes_at_the_end", "a/b/.//././", "a/b"},
    ItemRow{"here", "./.", "."},
    ItemRow{"folder_above", "a/..", "a/.."},
    ItemRow{"name_that_ends_with_a_dot", "a/b.", "a/b."},
    ItemRow{"root", "/", "/"},
    ItemRow{"root_with_a_dot", "/./", "/"},
    ItemRow{"roots", "///", "/"},
    ItemRow{"dash", "-", "-"},
    ItemRow{"not_utf8", "bad\xff.txt", "bad\xff.txt"},
    ItemRow{"percent_in_a_path_is_itself", "per%41cent", "per%41cent"},
    ItemRow{"empty", "", ""},
    ItemRow{"uri", "file:///a/b%20c", "/a/b c"},
    ItemRow{"uri_of_bytes", "file:///bad%FF.txt", "/bad\xff.txt"},
    ItemRow{"uri_of_a_newline", "file:///new%0Aline", "/new\nline"},
    ItemRow{"uri_of_a_folder", "file:///a/", "/a"},
    ItemRow{"uri_of_a_folder_with_a_dot", "file:///a/%2E", "/a"},
    ItemRow{"uri_with_this_host", "file://LocalHost/a", "/a"},
    ItemRow{"uri_without_authority", "file:/a", "/a"},
    ItemRow{"uri_with_plain_utf8", "file:///\xc3\xa9", "/\xc3\xa9"},
    ItemRow{"uri_with_an_encoded_percent", "file:///per%25cent", "/per%cent"},
    ItemRow{"uri_elsewhere", "file://server/a", ""},
    ItemRow{"uri_that_is_relative", "file:a", ""},
    ItemRow{"uri_without_path", "file://localhost", ""},
    ItemRow{"uri_of_a_nul", "file:///a%00b", ""},
    ItemRow{"uri_with_a_bare_percent", "file:///100%", ""},
    ItemRow{"uri_with_half_an_escape", "file:///a%4", ""},
    ItemRow{"uri_with_no_hexadecimal", "file:///a%zz", ""},
    ItemRow{"uri_with_a_sign_for_a_digit", "file:///a%+1", ""},
    ItemRow{"uri_with_a_query", "file:///a?b", ""},
    ItemRow{"uri_with_a_fragment", "file:///a#b", ""},
    ItemRow{"name_like_a_uri_below_here", "./file:a", "./file:a"},
    ItemRow{"another_scheme_is_a_path", "http://a/b", "http://a/b"},
};

class PathOfItem : public ::testing::TestWithParam<ItemRow>
{
};

TEST_P(PathOfItem, IsTheBytesThatTheKernelTakes)
{
    const ItemPath found = pathOfItem(GetParam().item);

    EXPECT_EQ(found.path, GetParam().path);
    EXPECT_EQ(found.fault.isNull(), !GetParam().path.isEmpty()) << found.fault.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Rows, PathOfItem, ::testing::ValuesIn(kItems), [](const auto& each) {
    return std::string(each.param.label);
});

} // namespace
} // namespace havrel::cli
