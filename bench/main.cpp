// Compares the library with the C API and with other C++ interfaces to OpenCL, operation by operation, on the first
// device of PoCL, or of any platform if there is no PoCL. BENCH_PLATFORM selects a platform by a part of its name.
//
//   mero_bench time [OPERATION]     compares times with the C API
//   mero_bench count [OPERATION]    counts calls and allocations; under callgrind, dumps instructions
//
// scripts/bench and scripts/bench-instructions run it and print tables.

#include "count.hpp"
#include "operations.hpp"
#include "time.hpp"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

std::string name_of(cl_platform_id platform) {
    std::size_t size = 0;
    clGetPlatformInfo(platform, CL_PLATFORM_NAME, 0, nullptr, &size);
    std::string name(size, '\0');
    clGetPlatformInfo(platform, CL_PLATFORM_NAME, size, name.data(), nullptr);
    return name.c_str();
}

cl_device_id find_device(char const* platform_name) {
    cl_uint count = 0;
    clGetPlatformIDs(0, nullptr, &count);
    std::vector<cl_platform_id> platforms(count);
    clGetPlatformIDs(count, platforms.data(), nullptr);
    cl_device_id found = nullptr;
    for (cl_platform_id const platform : platforms) {
        bool const wanted = name_of(platform).find(platform_name) != std::string::npos;
        if (found == nullptr && wanted) {
            clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &found, nullptr);
        }
    }
    return found;
}

cl_device_id choose_device() {
    if (char const* const wanted = std::getenv("BENCH_PLATFORM"); wanted != nullptr) {
        return find_device(wanted);
    }
    cl_device_id const pocl = find_device("Portable Computing Language");
    return pocl != nullptr ? pocl : find_device("");
}

} // namespace

int main(int count, char** arguments) {
    cl_device_id const device = choose_device();
    if (device == nullptr) {
        std::fprintf(stderr, "There is no such OpenCL device.\n");
        return EXIT_FAILURE;
    }
    std::vector<bench::contender> const contenders{bench::c_api(device), bench::library(device),
                                                   bench::khronos_bindings(device), bench::boost_compute(device)};
    for (bench::contender const& each : contenders) {
        if (!each.missing.empty()) {
            std::printf("# %s: %s\n", each.name.c_str(), each.missing.c_str());
        }
    }
    std::string_view const mode = count > 1 ? arguments[1] : "";
    std::string_view const operation = count > 2 ? arguments[2] : "";
    if (mode == "count") {
        bench::count(contenders, operation);
    } else if (mode == "time") {
        bench::time(contenders, operation);
    } else {
        std::fprintf(stderr, "usage: %s time|count [OPERATION]\n", arguments[0]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
