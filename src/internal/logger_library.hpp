#pragma once

// What the library needs of spdlog. It is in a shared object of its own, which is not loaded before it is needed: most
// programs log nothing, and to load spdlog costs more than to load the library.

#include <vorn/mero/common/export.hpp>

#include <memory>
#include <string_view>

namespace spdlog {
class logger;
}

namespace vorn::mero::internal {

struct logger_library {
    std::shared_ptr<spdlog::logger> (*make)(std::string_view level, std::string_view target);
    void (*log_error)(spdlog::logger& logger, char const* message);
    void (*flush)(spdlog::logger& logger);
};

} // namespace vorn::mero::internal

/// The one symbol of that shared object.
extern "C" VORN_MERO_EXPORT vorn::mero::internal::logger_library const vorn_mero_logger_library;
