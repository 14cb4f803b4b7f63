#pragma once

// The process-wide logger. This is the only installed header that includes spdlog, and no other header includes it. A
// program that includes it needs spdlog's headers and must link the same shared library of spdlog:
//
//     find_package(spdlog REQUIRED)
//     target_link_libraries(program PRIVATE vorn::mero spdlog::spdlog)
//
// With `spdlog::spdlog_header_only` program and library would have separate registries of loggers.

#include <vorn/mero/common/export.hpp>

#include <memory>
#include <spdlog/logger.h>

namespace vorn::mero::internal {

/// Owns the logger "mero". Its construction reads two environment variables, case-sensitive; a set-uid program ignores
/// them:
///
/// - `MERO_LOG_LEVEL`: "trace", "debug", "info", "warn", "error" or "critical"; anything else, or unset, logs nothing.
/// - `MERO_LOG_TARGET`: "file" writes "mero.log" in the working directory, "console" writes to standard error; anything
///   else, or unset, discards. The loggers of "file" and "console" are in spdlog's registry, the discarding one is not.
///
/// The file is written when its buffer is full and when the process ends; to write earlier, set `flush_on`.
class VORN_MERO_EXPORT log_singleton {
public:
    /// Throws `spdlog::spdlog_ex` if the file cannot be opened or a logger "mero" is already registered, and
    /// `std::runtime_error` if `libvorn-mero-logger.so`, which is installed beside the library, cannot be loaded.
    /// Programs use `get_log_singleton` instead of a second object.
    log_singleton();
    log_singleton(log_singleton const&) = delete;
    log_singleton& operator=(log_singleton const&) = delete;
    /// spdlog's registry keeps the loggers of "file" and "console".
    ~log_singleton();

    /// The logger; this object keeps owning it.
    [[nodiscard]] spdlog::logger* get_logger() const noexcept { return logger_.get(); }

private:
    std::shared_ptr<spdlog::logger> logger_;
};

/// The library's own logger. The first call, or the first failing destructor, constructs it; process exit flushes it,
/// and the library logs nothing after that. Later changes to the variables have no effect. Throws what the construction
/// throws; the next call then tries again. Thread-safe; a detached thread may use the logger until the process has
/// ended.
VORN_MERO_EXPORT log_singleton& get_log_singleton();

/// The logger of `get_log_singleton`, for logging and configuration; never null. The logger is thread-safe. Throws as
/// `get_log_singleton`.
///
///     vorn::mero::internal::get_mero_logger()->flush_on(spdlog::level::err);
VORN_MERO_EXPORT spdlog::logger* get_mero_logger();

} // namespace vorn::mero::internal
