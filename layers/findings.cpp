#include "findings.hpp"

#include "layer.hpp"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace nq::layer {
namespace {

int exit_status(char const* layer, char const* variable) {
    char const* const text = ::secure_getenv(variable);
    std::string_view const wanted = text != nullptr ? text : "";
    constexpr std::string_view key = "exit-status=";
    int status = 1;
    if (wanted.empty()) {
        return status;
    }
    std::string_view const number = wanted.starts_with(key) ? wanted.substr(key.size()) : "";
    auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), status);
    if (error != std::errc{} || end != number.data() + number.size() || status < 0 || status > 255) {
        print(layer,
              std::string(variable) + ": use exit-status=N with N from 0 to 255, not '" + std::string(wanted) + "'");
        return 1;
    }
    return status;
}

} // namespace

// Other layers may still have to report, or to finish a file. A function of on_exit() that is set while shared objects
// end is called when all have ended; one of atexit() would be called with the end of this one.
void end_with_findings(char const* layer, char const* variable) {
    static int status = 0;
    status = exit_status(layer, variable);
    auto const end = [](int /*own*/, void* /*unused*/) {
        std::fflush(nullptr);
        _exit(status);
    };
    if (status != 0 && on_exit(end, nullptr) != 0) {
        end(0, nullptr);
    }
}

} // namespace nq::layer
