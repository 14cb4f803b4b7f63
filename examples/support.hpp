#pragma once

// Helpers of several examples.

#include <vorn/mero/opencl.hpp>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace example {

/// The value after an option on the command line, or `otherwise`.
inline std::string option(int count, char** arguments, char const* name, std::string const& otherwise) {
    for (int i = 1; i + 1 < count; ++i) {
        if (std::strcmp(arguments[i], name) == 0) {
            return arguments[i + 1];
        }
    }
    return otherwise;
}

/// Calls `work.operator()<Api>()` for each OpenCL version, oldest first.
template <class Work>
void for_each_version(Work work) {
    using namespace vorn::mero;
    work.template operator()<api<100>>();
    work.template operator()<api<110>>();
    work.template operator()<api<120>>();
    work.template operator()<api<200>>();
    work.template operator()<api<210>>();
    work.template operator()<api<220>>();
}

/// The devices that `accept` accepts, of the platforms whose names contain a text.
template <class Api, class Accept>
std::vector<typename Api::device> find_devices(std::string const& platform, Accept accept) {
    std::vector<typename Api::device> found;
    for (auto const& device : Api::get_all_devices()) {
        if (device.get_platform().name().find(platform) != std::string::npos && accept(device)) {
            found.push_back(device);
        }
    }
    return found;
}

/// The first of them. Throws `std::runtime_error` if there is none.
template <class Api, class Accept>
typename Api::device find_device(std::string const& platform, Accept accept) {
    auto const found = find_devices<Api>(platform, accept);
    if (found.empty()) {
        throw std::runtime_error("No fitting device was found; NQ_BRIDGE_VERBOSE=1 says more.");
    }
    return found.front();
}

/// A built program. Throws `std::runtime_error` with the build log if it does not build.
template <class Api>
typename Api::program build(typename Api::context& context, typename Api::device const& device, char const* source,
                            std::string const& options = "") {
    auto program = context.create_program_from_source(source);
    program.build({device}, options, nullptr, nullptr);
    if (program.build_status(device) != decltype(program.build_status(device))::success) {
        throw std::runtime_error("The program does not build:\n" + program.build_log(device));
    }
    return program;
}

} // namespace example
