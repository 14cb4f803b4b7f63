#include <vorn/mero/internal/logger.hpp>

#include "internal/log_failure.hpp"
#include "internal/logger_library.hpp"
#include "internal/system.hpp"

#include <atomic>
#include <string_view>
#include <thread>

namespace vorn::mero::internal {
namespace {

std::atomic<bool> logging_has_ended{false};

// A thread that logs does not begin during a fork. Where one is amid it, the child may inherit a lock of spdlog's that
// none of its threads holds: it logs no more, rather than wait for ever. Whoever forks waits for nobody.
std::atomic<int> logging_threads{0};
std::atomic<int> forking_threads{0};
thread_local bool is_forking = false; // whose other fork handlers may log
thread_local bool forks_amid_logging = false;

struct logging_thread {
    logging_thread() noexcept {
        for (++logging_threads; forking_threads != 0 && !is_forking;) {
            std::this_thread::yield();
        }
    }
    logging_thread(logging_thread const&) = delete;
    logging_thread& operator=(logging_thread const&) = delete;
    ~logging_thread() { --logging_threads; }
};

void before_fork() {
    ++forking_threads;
    is_forking = true;
    forks_amid_logging = logging_threads != 0;
}
void after_fork_in_parent() {
    is_forking = false;
    --forking_threads;
}
void after_fork_in_child() {
    is_forking = false;
    forking_threads = 0;
    logging_threads = 0; // the others do not exist here
    if (forks_amid_logging) {
        logging_has_ended = true;
    }
}

[[maybe_unused]] bool const forks_are_watched = [] {
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
        if (logging_has_ended.exchange(true)) {
            return;
        }
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
        logging_thread const here;
        library().log_error(*get_mero_logger(), message);
    } catch (...) { // a destructor has nowhere to report this
    }
}

} // namespace vorn::mero::internal
