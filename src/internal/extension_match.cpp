#include "internal/extension_match.hpp"

#include <algorithm>
#include <cctype>

namespace vorn::mero::internal {
namespace {

bool same_letter(unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); }

bool begins(std::string const& extension, std::string const& name) {
    return extension.size() <= name.size() && std::equal(extension.begin(), extension.end(), name.begin(), same_letter);
}

} // namespace

bool matches_any_extension(std::vector<std::string> const& extensions, std::string const& name) {
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](std::string const& extension) { return begins(extension, name); });
}

} // namespace vorn::mero::internal
