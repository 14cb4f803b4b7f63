#pragma once

#include <vorn/mero/common/export.hpp>

#include <string>
#include <vector>

namespace vorn::mero::internal {

/// The runs of characters between white space (as `std::isspace` of the current locale has it), in order; none for a
/// blank text. Extension lists are written so.
VORN_MERO_EXPORT std::vector<std::string> split_space(std::string const& text);

/// The non-empty runs of characters between semicolons, in order; white space stays. Kernel name lists are written so.
VORN_MERO_EXPORT std::vector<std::string> split_semicolon(std::string const& text);

/// The items with one semicolon between each two.
VORN_MERO_EXPORT std::string join_semicolon(std::vector<std::string> const& items);

} // namespace vorn::mero::internal
