#include <vorn/mero/internal/logger.hpp>

#include "internal/log_failure.hpp"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <string_view>
#include <unistd.h>

namespace vorn::mero::internal {
namespace {

constexpr char const* logger_name = "mero";
constexpr char const* file_name = "mero.log";

std::atomic<bool> logging_has_ended{false};

// Constructs spdlog's registry when the library is loaded. The registry then outlives all objects of the program, whose
// destructors may be the first to log.
[[maybe_unused]] auto const registry_is_alive = spdlog::get(logger_name) != nullptr;

std::string_view environment(char const* name, std::string_view otherwise) {
    char const* const value = secure_getenv(name); // a set-uid program must not be told by its user where to write
    return value != nullptr ? value : otherwise;
}

// spdlog tries five times, 10 ms apart, before it says that it cannot open a file.
void require_file() {
    int const file = ::open(file_name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0) {
        throw spdlog::spdlog_ex(std::string("Failed opening file ") + file_name + " for writing", errno);
    }
    ::close(file);
}

std::shared_ptr<spdlog::logger> make_logger(std::string_view target) {
    if (target == "file") {
        require_file();
        return spdlog::basic_logger_mt(logger_name, file_name);
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

struct end_of_logging {
    spdlog::logger& logger;

    ~end_of_logging() {
        logging_has_ended = true;
        try {
            logger.flush();
        } catch (...) { // of a program's own sink; process exit has nowhere to report this
        }
    }
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
        get_mero_logger()->error(message);
    } catch (...) { // a destructor has nowhere to report this
    }
}

} // namespace vorn::mero::internal
