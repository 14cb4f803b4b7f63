#pragma once

// The process-wide logger. The only installed header that includes spdlog; nothing else includes this one. A program
// that does links the shared spdlog itself, so that it and the library share one registry of loggers.

#include <vorn/mero/common/export.hpp>

#include <memory>
#include <spdlog/logger.h>

namespace vorn::mero::internal {

/// Owner of the logger "mero", which it configures from two environment variables when it is built:
///
/// - `MERO_LOG_LEVEL`: "trace", "debug", "info", "warn", "error" or "critical"; anything else, or unset, logs nothing.
/// - `MERO_LOG_TARGET`: "file" writes "mero.log" in the working directory, "console" writes to standard error; anything
///   else, or unset, discards. The loggers of these two words are in spdlog's registry, the discarding one is not.
class VORN_MERO_EXPORT log_singleton {
public:
    /// Throws `spdlog::spdlog_ex` when the file cannot be opened or a logger "mero" is registered already.
    log_singleton();
    log_singleton(log_singleton const&) = delete;
    log_singleton& operator=(log_singleton const&) = delete;
    ~log_singleton();

    /// The logger, which stays the singleton's.
    spdlog::logger* get_logger() const noexcept { return logger_.get(); }

private:
    std::shared_ptr<spdlog::logger> logger_;
};

/// The library's own logger, built by the first call from any thread and destroyed at process exit. A call whose
/// construction throws passes the exception on; the next one tries again.
VORN_MERO_EXPORT log_singleton& get_log_singleton();

/// The logger of the library's own singleton. Throws as `get_log_singleton` does.
VORN_MERO_EXPORT spdlog::logger* get_mero_logger();

} // namespace vorn::mero::internal
