#include <vorn/mero/internal/logger.hpp>

#include "internal/log_failure.hpp"

#include <atomic>
#include <cstdlib>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <string_view>

namespace vorn::mero::internal {
namespace {

constexpr char const* logger_name = "mero";

// Has no destructor, so that destructors can read it until the very end of the process.
std::atomic<bool> logger_is_gone{false};

// Constructs spdlog's registry when the library is loaded. The registry then outlives all objects of the program, whose
// destructors may be the first to log.
[[maybe_unused]] auto const registry_is_alive = spdlog::get(logger_name) != nullptr;

std::string_view environment(char const* name, std::string_view otherwise) {
    char const* const value = secure_getenv(name); // a set-uid program must not be told by its user where to write
    return value != nullptr ? value : otherwise;
}

std::shared_ptr<spdlog::logger> make_logger(std::string_view target) {
    if (target == "file") {
        return spdlog::basic_logger_mt(logger_name, "mero.log");
    }
    if (target == "console") {
        return spdlog::stderr_logger_mt(logger_name);
    }
    return std::make_shared<spdlog::logger>(logger_name, std::make_shared<spdlog::sinks::null_sink_mt>());
}

spdlog::level::level_enum level_of(std::string_view word) {
    using spdlog::level::level_enum;
    struct named_level {
        std::string_view name;
        level_enum level;
    };
    constexpr named_level levels[] = {{"trace", level_enum::trace}, {"debug", level_enum::debug},
                                      {"info", level_enum::info},   {"warn", level_enum::warn},
                                      {"error", level_enum::err},   {"critical", level_enum::critical}};
    for (named_level const& candidate : levels) {
        if (candidate.name == word) {
            return candidate.level;
        }
    }
    return level_enum::off;
}

struct process_wide_singleton : log_singleton {
    ~process_wide_singleton() { logger_is_gone = true; }
};

} // namespace

log_singleton::log_singleton() {
    auto const level = environment("MERO_LOG_LEVEL", "off");
    auto const target = environment("MERO_LOG_TARGET", "none");
    logger_ = make_logger(target);
    logger_->set_level(level_of(level));
}

log_singleton::~log_singleton() = default;

log_singleton& get_log_singleton() {
    static process_wide_singleton singleton;
    return singleton;
}

spdlog::logger* get_mero_logger() { return get_log_singleton().get_logger(); }

void log_failure(char const* message) noexcept {
    if (logger_is_gone) {
        return;
    }
    try {
        get_mero_logger()->error(message);
    } catch (...) { // a destructor has nowhere to report this
    }
}

} // namespace vorn::mero::internal
