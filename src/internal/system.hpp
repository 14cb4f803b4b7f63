#pragma once

// What the library asks of the operating system.

#include <string>

namespace vorn::mero::internal {

/// An environment variable, or null. A set-uid program must not be told by its user what to do: null there.
char const* trusted_environment(char const* name) noexcept;

/// Loads a library, the one beside this library first, for the rest of the process, and returns one of its symbols.
/// Throws `std::runtime_error`.
void* load_symbol(std::string const& library, char const* symbol);

/// Whether the program itself uses the shared library of spdlog.
bool program_uses_spdlog() noexcept;

/// Calls these around each fork, where there are forks; they must not fail.
void watch_forks(void (*before)(), void (*after_in_parent)(), void (*after_in_child)()) noexcept;

} // namespace vorn::mero::internal
