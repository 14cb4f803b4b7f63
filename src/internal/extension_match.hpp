#pragma once

#include <string>
#include <vector>

namespace vorn::mero::internal {

/// Whether one of a device's extensions, without regard to case, is the name or begins it.
bool matches_any_extension(std::vector<std::string> const& extensions, std::string const& name);

} // namespace vorn::mero::internal
