#pragma once

namespace vorn::mero::internal {

/// Logs at error level. Does nothing if there is no logger, such as after its destruction at process exit.
void log_failure(char const* message) noexcept;

} // namespace vorn::mero::internal
