#pragma once

namespace vorn::mero::internal {

/// Logs at error level; does nothing where there is no logger to be had, as after its end at process exit.
void log_failure(char const* message) noexcept;

} // namespace vorn::mero::internal
