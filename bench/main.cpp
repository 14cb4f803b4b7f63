// Compares the library with the C API and with other C++ interfaces to OpenCL, operation by operation, on the first
// device of PoCL, or of any platform if there is no PoCL. BENCH_PLATFORM selects a platform by a part of its name.
//
//   mero_bench time [OPERATION]     compares times with the C API
//   mero_bench threads              measures the library with 1, 2 and 4 threads
//   mero_bench count [OPERATION]    counts calls and allocations; under callgrind, dumps instructions
//
// scripts/bench and scripts/bench-instructions run it and print tables.

#include "count.hpp"
#include "operations.hpp"
#include "threads.hpp"
#include "time.hpp"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

template <class Handle>
std::string text_of(cl_int (*function)(Handle, cl_uint, std::size_t, void*, std::size_t*), Handle handle,
                    cl_uint name) {
    std::size_t size = 0;
    function(handle, name, 0, nullptr, &size);
    std::string text(size, '\0');
    function(handle, name, size, text.data(), nullptr);
    return text.c_str();
}

cl_device_id find_device(char const* platform_name) {
    cl_uint count = 0;
    clGetPlatformIDs(0, nullptr, &count);
    std::vector<cl_platform_id> platforms(count);
    clGetPlatformIDs(count, platforms.data(), nullptr);
    cl_device_id found = nullptr;
    for (cl_platform_id const platform : platforms) {
        bool const wanted =
            text_of(clGetPlatformInfo, platform, CL_PLATFORM_NAME).find(platform_name) != std::string::npos;
        if (found == nullptr && wanted) {
            clGetDeviceIDs(platform, CL_DEVICE_TYPE_ALL, 1, &found, nullptr);
        }
    }
    return found;
}

std::string description_of(cl_device_id device) {
    cl_platform_id platform = nullptr;
    clGetDeviceInfo(device, CL_DEVICE_PLATFORM, sizeof platform, &platform, nullptr);
    return text_of(clGetPlatformInfo, platform, CL_PLATFORM_NAME) + ' ' +
           text_of(clGetDeviceInfo, device, CL_DRIVER_VERSION);
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
    std::string_view const mode = count > 1 ? arguments[1] : "";
    std::string_view const operation = count > 2 ? arguments[2] : "";
    if (mode == "threads") {
        bench::threads();
        return EXIT_SUCCESS;
    }
    std::vector<bench::contender> const contenders{bench::c_api(device), bench::library(device), bench::easy(device),
                                                   bench::khronos_bindings(device), bench::boost_compute(device)};
    for (bench::contender const& each : contenders) {
        if (!each.missing.empty()) {
            std::printf("# %s: %s\n", each.name.c_str(), each.missing.c_str());
        }
    }
    if (mode == "count") {
        bench::count(contenders, operation);
    } else if (mode == "time") {
        std::printf("# on %s\n", description_of(device).c_str());
        bench::time(contenders, operation);
    } else {
        std::fprintf(stderr, "usage: %s time|count|threads [OPERATION]\n", arguments[0]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
