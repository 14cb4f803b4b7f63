#include <vorn/mero/internal/strings.hpp>

#include <algorithm>
#include <cctype>

namespace vorn::mero::internal {
namespace {

template <class IsSeparator>
std::vector<std::string> split(std::string const& text, IsSeparator is_separator) {
    std::vector<std::string> items;
    auto const end = text.end();
    for (auto begin = text.begin();;) {
        begin = std::find_if_not(begin, end, is_separator);
        if (begin == end) {
            return items;
        }
        auto const item_end = std::find_if(begin, end, is_separator);
        items.emplace_back(begin, item_end);
        begin = item_end;
    }
}

} // namespace

std::vector<std::string> split_space(std::string const& text) {
    return split(text, [](unsigned char c) { return std::isspace(c) != 0; });
}

std::vector<std::string> split_semicolon(std::string const& text) {
    return split(text, [](char c) { return c == ';'; });
}

std::string join_semicolon(std::vector<std::string> const& items) {
    std::string text;
    for (std::string const& item : items) {
        if (&item != &items.front()) {
            text += ';';
        }
        text += item;
    }
    return text;
}

} // namespace vorn::mero::internal
