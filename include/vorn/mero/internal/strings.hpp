#pragma once

#include <vorn/mero/common/export.hpp>

#include <string>
#include <vector>

namespace vorn::mero::internal {

/// Splits a text at white space (`std::isspace` in the current locale), such as a list of extensions. No item is empty;
/// a blank text has none.
[[nodiscard]] VORN_MERO_EXPORT std::vector<std::string> split_space(std::string const& text);

/// Splits a text at semicolons, such as a list of kernel names. Empty items are dropped; white space is kept.
[[nodiscard]] VORN_MERO_EXPORT std::vector<std::string> split_semicolon(std::string const& text);

/// The items in order, separated by semicolons.
[[nodiscard]] VORN_MERO_EXPORT std::string join_semicolon(std::vector<std::string> const& items);

} // namespace vorn::mero::internal
