// Compares the library over the bridge with the C API called directly, operation by operation, on the first device of
// PoCL, or of the platform whose name contains the text of BENCH_PLATFORM. Prints for each the medians in nanoseconds
// and of the ratio; takes the arguments of Google Benchmark.

#include "operations.hpp"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments) {
    char const* const named = std::getenv("BENCH_PLATFORM");
    std::string const platform = named != nullptr ? named : "Portable Computing Language";
    benchmark::Initialize(&count, arguments);
    for (auto const& device : bench::mero::get_all_devices()) {
        if (device.get_platform().name().find(platform) == std::string::npos) {
            continue;
        }
        std::printf("%s: %s\n", device.get_platform().name().c_str(), device.name().c_str());
        bench::fixture on(device);
        bench::compare_basics(on);
        bench::compare_buffer_commands(on);
        bench::compare_image_commands(on);
        bench::compare_kernel_commands(on);
        bench::compare_shared_memory_commands(on);
        bench::compare_tasks(on);
        benchmark::RunSpecifiedBenchmarks();
        return EXIT_SUCCESS;
    }
    std::fprintf(stderr, "No device of OpenCL 2.1 on a platform named \"%s\"; NQ_BRIDGE_VERBOSE=1 says more.\n",
                 platform.c_str());
    return EXIT_FAILURE;
}
