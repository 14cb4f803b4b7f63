// The whole way, in all six namespaces: discovers devices, builds a program, writes buffers, computes y = a * x + y,
// reads the result and checks every element.
//
//     saxpy [--elements N] [--platform TEXT]
//
// N is a multiple of 64, by default 16 Mi; TEXT selects the platforms whose names contain it. Exits 1 if a check fails
// or there is no device.

#include <vorn/mero/opencl.hpp>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct options {
    std::size_t elements = std::size_t{16} << 20;
    std::string platform;
};

struct measurement {
    double build_ms = 0;
    double kernel_ms = 0; // 0 if the queue does not profile
    double error = 0;     // the largest, of any element
};

constexpr char const* source = R"(
kernel void saxpy(float a, global float const* x, global float* y) {
    size_t i = get_global_id(0);
    y[i] = a * x[i] + y[i];
}
)";

constexpr float factor = 2.5F;

float x_at(std::size_t i) { return static_cast<float>(i % 1024); }
float y_at(std::size_t i) { return static_cast<float>(i % 509); }

std::vector<float> fill(std::size_t elements, float (*value_at)(std::size_t)) {
    std::vector<float> values(elements);
    for (std::size_t i = 0; i != elements; ++i) {
        values[i] = value_at(i);
    }
    return values;
}

double largest_error(std::vector<float> const& result) {
    double error = 0;
    for (std::size_t i = 0; i != result.size(); ++i) {
        double const difference = std::abs(double{result[i]} - double{factor * x_at(i) + y_at(i)});
        if (!(difference <= error)) { // a NaN too
            error = std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
        }
    }
    return error;
}

double milliseconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

template <class Api>
typename Api::program build(typename Api::context& context, typename Api::device const& device) {
    auto program = context.create_program_from_source(source);
    program.build({}, "", nullptr, nullptr);
    if (program.build_status(device) != decltype(program.build_status(device))::success) {
        throw std::runtime_error("The program does not build:\n" + program.build_log(device));
    }
    return program;
}

template <class Api>
measurement run(typename Api::device const& device, std::vector<float> const& x, std::vector<float> y) {
    measurement measured;
    std::size_t const bytes = x.size() * sizeof(float);
    auto context = Api::create_context(device);
    auto queue = Api::create_queue(context, device, false, true);

    auto const start = std::chrono::steady_clock::now();
    auto program = build<Api>(context, device);
    measured.build_ms = milliseconds_since(start);

    auto x_buffer = context.create_buffer(Api::mem_flags::read_only, bytes, nullptr);
    auto y_buffer = context.create_buffer(Api::mem_flags::read_write, bytes, nullptr);
    // Blocking: should a later call fail, the vectors may be gone before they are read.
    queue.enqueue_command_without_event(typename Api::write_buffer(x_buffer, true, 0, bytes, x.data()));
    queue.enqueue_command_without_event(typename Api::write_buffer(y_buffer, true, 0, bytes, y.data()));

    auto kernel = program.create_kernel("saxpy");
    kernel.set_argument_raw(0, sizeof factor, &factor);
    kernel.set_argument(1, x_buffer);
    kernel.set_argument(2, y_buffer);
    auto launched = queue.enqueue_command(Api::launch(kernel, x.size(), 64));
    queue.enqueue_command_without_event(typename Api::read_buffer(y_buffer, true, 0, bytes, y.data()));
    queue.finish();

    if (queue.profiling_enabled()) {
        auto const nanoseconds = launched.profile_command_end() - launched.profile_command_start();
        measured.kernel_ms = static_cast<double>(nanoseconds) * 1e-6;
    }
    measured.error = largest_error(y);
    return measured;
}

void print(std::string const& version, std::string const& device, std::size_t elements, measurement const& measured) {
    std::printf("%-8s %-48.48s %8.1f ms ", version.c_str(), device.c_str(), measured.build_ms);
    if (measured.kernel_ms > 0) {
        double const gigabytes = 3.0 * static_cast<double>(elements * sizeof(float)) * 1e-9;
        std::printf("%8.2f ms %8.1f GB/s", measured.kernel_ms, gigabytes / (measured.kernel_ms * 1e-3));
    } else {
        std::printf("%11s %13s", "-", "-");
    }
    std::printf("  %g\n", measured.error);
}

// Returns the number of devices, or -1 if one computed a wrong result.
template <class Api>
int run_all(options const& chosen, std::vector<float> const& x, std::vector<float> const& y) {
    std::string const version =
        "OpenCL " + std::to_string(Api::number / 100) + '.' + std::to_string(Api::number / 10 % 10);
    int right = 0;
    bool wrong = false;
    for (auto const& device : Api::get_all_devices()) {
        std::string const name = device.get_platform().name() + ": " + device.name();
        if (name.find(chosen.platform) == std::string::npos) {
            continue;
        }
        try {
            measurement const measured = run<Api>(device, x, y);
            print(version.substr(7), name, x.size(), measured);
            wrong = wrong || measured.error > 0;
            ++right;
        } catch (std::exception const& failure) {
            std::printf("%-8s %-48.48s FAILED: %s\n", version.c_str() + 7, name.c_str(), failure.what());
            wrong = true;
        }
    }
    return wrong ? -1 : right;
}

template <class Api>
void list_devices() {
    for (auto const& device : Api::get_all_devices()) {
        std::printf("  %d.%d  %s: %s\n", Api::number / 100, Api::number / 10 % 10, device.get_platform().name().c_str(),
                    device.name().c_str());
    }
}

options parse(int count, char** arguments) {
    options chosen;
    for (int i = 1; i + 1 < count; i += 2) {
        if (std::strcmp(arguments[i], "--elements") == 0) {
            chosen.elements = std::strtoull(arguments[i + 1], nullptr, 10);
        } else if (std::strcmp(arguments[i], "--platform") == 0) {
            chosen.platform = arguments[i + 1];
        } else {
            throw std::invalid_argument(std::string("unknown option ") + arguments[i]);
        }
    }
    if (count % 2 == 0 || chosen.elements == 0 || chosen.elements % 64 != 0) {
        throw std::invalid_argument("usage: saxpy [--elements MULTIPLE_OF_64] [--platform TEXT]");
    }
    return chosen;
}

template <class... Apis>
int run_versions(options const& chosen) {
    std::printf("Devices:\n");
    (list_devices<Apis>(), ...);
    std::printf("\nSAXPY of %zu floats:\n%-8s %-48s %11s %11s %13s  %s\n", chosen.elements, "OpenCL", "device", "build",
                "kernel", "bandwidth", "max error");
    auto const x = fill(chosen.elements, x_at);
    auto const y = fill(chosen.elements, y_at);
    int devices = 0;
    bool wrong = false;
    for (int const right : {run_all<Apis>(chosen, x, y)...}) {
        wrong = wrong || right < 0;
        devices += right;
    }
    if (!wrong && devices == 0) {
        std::fprintf(stderr, "No device was found; NQ_BRIDGE_VERBOSE=1 says why.\n");
    }
    return wrong || devices == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace

int main(int count, char** arguments) {
    using namespace vorn::mero;
    try {
        return run_versions<api<100>, api<110>, api<120>, api<200>, api<210>, api<220>>(parse(count, arguments));
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "saxpy: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
