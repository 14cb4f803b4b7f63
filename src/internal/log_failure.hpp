#pragma once

namespace vorn::mero::internal {

/// Logs at error level. Does nothing if there is no logger, or after process exit has flushed it.
void log_failure(char const* message) noexcept;

} // namespace vorn::mero::internal
