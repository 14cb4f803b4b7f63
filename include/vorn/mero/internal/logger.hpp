#pragma once

// The process-wide logger. The only installed header that includes spdlog; none of the others includes this one, and a
// program that does not include it needs neither spdlog's headers nor to link to it.
//
// One that does needs the headers, and links the shared library that this library links:
//
//     find_package(spdlog REQUIRED)
//     target_link_libraries(program PRIVATE vorn::mero spdlog::spdlog)
//
// Not `spdlog::spdlog_header_only`: program and library would each have a registry of loggers of their own.

#include <vorn/mero/common/export.hpp>

#include <memory>
#include <spdlog/logger.h>

namespace vorn::mero::internal {

/// Owner of the logger "mero", which it configures from two environment variables when it is built:
///
/// - `MERO_LOG_LEVEL`: "trace", "debug", "info", "warn", "error" or "critical"; anything else, or unset, logs nothing.
/// - `MERO_LOG_TARGET`: "file" writes "mero.log" in the working directory, "console" writes to standard error; anything
///   else, or unset, discards. The loggers of these two words are in spdlog's registry, the discarding one is not.
///
/// The words are compared letter by letter, case too. The file is written when its buffer is full or the process ends:
/// a program that wants it at once sets `flush_on`.
class VORN_MERO_EXPORT log_singleton {
public:
    /// Throws `spdlog::spdlog_ex` when the file cannot be opened or a logger "mero" is registered already. A program
    /// makes none: it would be a second "mero".
    log_singleton();
    log_singleton(log_singleton const&) = delete;
    log_singleton& operator=(log_singleton const&) = delete;
    ~log_singleton();

    /// The logger, which stays the singleton's.
    spdlog::logger* get_logger() const noexcept { return logger_.get(); }

private:
    std::shared_ptr<spdlog::logger> logger_;
};

/// The library's own logger, built by the first call from any thread, or by the first destructor that fails, and
/// destroyed at process exit. Variables that are changed later have no effect. A call whose construction throws passes
/// the exception on; the next one tries again.
VORN_MERO_EXPORT log_singleton& get_log_singleton();

/// The logger of the library's own singleton, never null, to log to or to set up; it may be used by several threads at
/// once. Throws as `get_log_singleton` does.
///
///     vorn::mero::internal::get_mero_logger()->flush_on(spdlog::level::err);
VORN_MERO_EXPORT spdlog::logger* get_mero_logger();

} // namespace vorn::mero::internal
