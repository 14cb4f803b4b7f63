#include <vorn/mero/internal/logger.hpp>

#include "internal/log_failure.hpp"
#include "internal/logger_library.hpp"

#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace spdlog {
[[gnu::weak]] std::shared_ptr<logger> get(std::string const& name); // null unless the program itself uses spdlog
}

namespace vorn::mero::internal {
namespace {

std::atomic<bool> logging_has_ended{false};

std::string_view environment(char const* name, std::string_view otherwise) {
    char const* const value = secure_getenv(name); // a set-uid program must not be told by its user where to write
    return value != nullptr ? value : otherwise;
}

/// The folder of the library with a slash, or nothing.
std::string own_folder() {
    Dl_info here{};
    if (::dladdr(&logging_has_ended, &here) == 0 || here.dli_fname == nullptr || here.dli_fname[0] != '/') {
        return {};
    }
    std::string const path = here.dli_fname;
    return path.substr(0, path.rfind('/') + 1);
}

/// Throws `std::runtime_error`.
logger_library const& load_library() {
    // beside the library first: a tool that intercepts dlopen hides who calls it, and with that the run path
    std::string const name = VORN_MERO_LOGGER_LIBRARY;
    int const flags = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;
    void* const beside = ::dlopen((own_folder() + name).c_str(), flags);
    void* const library = beside != nullptr ? beside : ::dlopen(name.c_str(), flags);
    void* const found = library != nullptr ? ::dlsym(library, "vorn_mero_logger_library") : nullptr;
    if (found == nullptr) {
        throw std::runtime_error(::dlerror());
    }
    return *static_cast<logger_library const*>(found);
}

logger_library const& library() {
    static logger_library const& loaded = load_library();
    return loaded;
}

bool load_early() noexcept {
    auto const target = environment("MERO_LOG_TARGET", "none");
    bool const is_needed = &spdlog::get != nullptr || target == "file" || target == "console";
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
        library().log_error(*get_mero_logger(), message);
    } catch (...) { // a destructor has nowhere to report this
    }
}

} // namespace vorn::mero::internal
