#pragma once

#include <string>
#include <vector>

namespace vorn::mero::internal {

/// Whether one of a device's extensions is the name or a prefix of it. Ignores case.
bool matches_any_extension(std::vector<std::string> const& extensions, std::string const& name);

} // namespace vorn::mero::internal
