#include "internal/logger_library.hpp"

#include <cerrno>
#include <cstdio>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <string>

namespace vorn::mero::internal {
namespace {

constexpr char const* logger_name = "mero";
constexpr char const* file_name = "mero.log";

// Makes spdlog's registry as early as possible, so that it outlives the objects of the program.
[[maybe_unused]] auto const registry_is_alive = spdlog::get(logger_name) != nullptr;

// spdlog tries five times, 10 ms apart, before it says that it cannot open a file.
void require_file() {
    std::FILE* const file = std::fopen(file_name, "a");
    if (file == nullptr) {
        throw spdlog::spdlog_ex(std::string("Failed opening file ") + file_name + " for writing", errno);
    }
    std::fclose(file);
}

std::shared_ptr<spdlog::logger> make_for(std::string_view target) {
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

std::shared_ptr<spdlog::logger> make(std::string_view level, std::string_view target) {
    auto made = make_for(target);
    made->set_level(level_of(level));
    return made;
}

void log_error(spdlog::logger& logger, char const* message) { logger.error(message); }

void flush(spdlog::logger& logger) { logger.flush(); }

} // namespace
} // namespace vorn::mero::internal

using namespace vorn::mero::internal;

logger_library const vorn_mero_logger_library{make, log_error, flush};
