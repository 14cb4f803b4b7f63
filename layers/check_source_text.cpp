// Finds a kernel's arguments in the source of a program, as far as that can be without a compiler.

#include "check_kernels.hpp"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace nq::layer::check {
namespace {

// Each comment becomes a blank.
std::string without_comments(std::string const& source) {
    std::string text;
    for (std::size_t at = 0; at < source.size();) {
        std::string_view const two = std::string_view(source).substr(at, 2);
        if (two == "//") {
            at = std::min(source.find('\n', at), source.size());
        } else if (two == "/*") {
            at = std::min(source.find("*/", at + 2), source.size() - 2) + 2;
        } else {
            text += source[at++];
            continue;
        }
        text += ' ';
    }
    return text;
}

bool is_in_word(char letter) { return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_'; }

std::string trimmed(std::string_view text) {
    auto const is_blank = [](char letter) { return std::isspace(static_cast<unsigned char>(letter)) != 0; };
    auto const begin = std::find_if_not(text.begin(), text.end(), is_blank);
    auto const end = std::find_if_not(text.rbegin(), std::string_view::const_reverse_iterator(begin), is_blank).base();
    return {begin, end};
}

// The part between two commas of what is in parentheses from a position on.
std::string part(std::string const& text, std::size_t open, std::size_t index) {
    int depth = 0;
    std::size_t begin = open + 1;
    for (std::size_t at = open; at < text.size(); ++at) {
        depth += text[at] == '(' ? 1 : text[at] == ')' ? -1 : 0;
        bool const ends = (depth == 1 && text[at] == ',') || depth == 0;
        if (ends && index-- == 0) {
            return trimmed(std::string_view(text).substr(begin, at - begin));
        }
        if (depth == 0) {
            break;
        }
        begin = ends ? at + 1 : begin;
    }
    return "";
}

// Whether a name at a position is declared there: a kernel comes before, in the same statement.
bool is_declared(std::string const& text, std::size_t name) {
    std::size_t const begin = name == 0 ? 0 : text.find_last_of(";}", name - 1) + 1; // 0 if there is none
    std::string const before = text.substr(begin, name - begin);
    std::size_t const at = before.find("kernel");
    return at != std::string::npos;
}

} // namespace

std::string declaration_of(std::string const& source, std::string const& kernel, std::size_t argument) {
    std::string const text = without_comments(source);
    std::string found;
    for (std::size_t at = kernel.empty() ? std::string::npos : text.find(kernel); at != std::string::npos;
         at = text.find(kernel, at + 1)) {
        std::size_t const end = text.find_first_not_of(" \t\r\n", at + kernel.size());
        bool const whole = (at == 0 || !is_in_word(text[at - 1])) && end != std::string::npos && text[end] == '(';
        if (!whole || !is_declared(text, at)) {
            continue;
        }
        std::string const declared = part(text, end, argument);
        if (!found.empty() && declared != found) {
            return "";
        }
        found = declared;
    }
    return found;
}

} // namespace nq::layer::check
