#include <vorn/mero/internal/logger.hpp>

#include "internal/log_failure.hpp"
#include "internal/logger_library.hpp"
#include "internal/system.hpp"

#include <atomic>
#include <mutex>
#include <new>
#include <string_view>

namespace vorn::mero::internal {
namespace {

std::atomic<bool> logging_has_ended{false};

// Held by a thread that logs, and during a fork: else the child could inherit a lock of spdlog's that none of its
// threads holds, and would wait for ever when it logs. Recursive: a sink of the program may itself fork, or fail to
// release an object. Never destroyed: a detached thread may log until the process has ended.
std::recursive_mutex& logging = *new std::recursive_mutex;

void before_fork() { logging.lock(); }
void after_fork_in_parent() { logging.unlock(); }
void after_fork_in_child() { new (&logging) std::recursive_mutex; } // its owner has another number in the child

[[maybe_unused]] bool const forks_wait = [] {
    watch_forks(before_fork, after_fork_in_parent, after_fork_in_child);
    return true;
}();

std::string_view environment(char const* name, std::string_view otherwise) {
    char const* const value = trusted_environment(name);
    return value != nullptr ? value : otherwise;
}

/// Throws `std::runtime_error`.
logger_library const& load_library() {
    return *static_cast<logger_library const*>(load_symbol(VORN_MERO_LOGGER_LIBRARY, "vorn_mero_logger_library"));
}

logger_library const& library() {
    static logger_library const& loaded = load_library();
    return loaded;
}

bool load_early() noexcept {
    auto const target = environment("MERO_LOG_TARGET", "none");
    bool const is_needed = program_uses_spdlog() || target == "file" || target == "console";
    try {
        return is_needed && library().make != nullptr;
    } catch (...) { // whoever logs is told
        return false;
    }
}

// Process exit destroys spdlog's registry before older objects, whose destructors may be the first to log. Where the
// program has loggers in the registry, or this library will have one, the registry is made as early as can be.
[[maybe_unused]] bool const is_loaded_early = load_early();

// Flushes at process exit.
struct end_of_logging {
    spdlog::logger& logger;

    ~end_of_logging() {
        logging_has_ended = true;
        try {
            library().flush(logger);
        } catch (...) { // of a program's own sink; process exit has nowhere to report this
        }
    }
};

} // namespace

log_singleton::log_singleton()
    : logger_(library().make(environment("MERO_LOG_LEVEL", "off"), environment("MERO_LOG_TARGET", "none"))) {}

log_singleton::~log_singleton() = default;

log_singleton& get_log_singleton() {
    // Never destroyed: a detached thread may be about to log when the process exits.
    static auto& singleton = *new log_singleton;
    static end_of_logging const end{*singleton.get_logger()};
    return singleton;
}

spdlog::logger* get_mero_logger() { return get_log_singleton().get_logger(); }

void log_failure(char const* message) noexcept {
    if (logging_has_ended) {
        return;
    }
    try {
        std::lock_guard const lock(logging);
        library().log_error(*get_mero_logger(), message);
    } catch (...) { // a destructor has nowhere to report this
    }
}

} // namespace vorn::mero::internal
