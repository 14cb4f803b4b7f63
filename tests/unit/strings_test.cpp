#include <gtest/gtest.h>
#include <vorn/mero/internal/strings.hpp>

namespace {

using namespace vorn::mero::internal;
using list = std::vector<std::string>;

TEST(strings, are_split_and_joined) {
    std::vector<std::pair<std::string, list>> const spaced = {
        {"  a b\tc  ", {"a", "b", "c"}}, {"", {}}, {" \t\n\v\f\r", {}}, {"a", {"a"}}, {"a;b \xE9", {"a;b", "\xE9"}}};
    for (auto const& [text, items] : spaced) {
        EXPECT_EQ(split_space(text), items) << text;
    }
    std::vector<std::pair<std::string, list>> const separated = {
        {"x;;y;", {"x", "y"}}, {"", {}}, {";;", {}}, {" x ; y", {" x ", " y"}}, {"x", {"x"}}};
    for (auto const& [text, items] : separated) {
        EXPECT_EQ(split_semicolon(text), items) << text;
    }
    EXPECT_EQ(join_semicolon({}), "");
    EXPECT_EQ(join_semicolon({"x"}), "x");
    EXPECT_EQ(join_semicolon({"x", "y"}), "x;y");
    EXPECT_EQ(join_semicolon({"", "x", ""}), ";x;");
}

} // namespace
