// Splits one job over several devices: over the sub-devices of one, and over all devices of all platforms. Measures the
// speed of each device, and gives each lines of the picture in proportion. Prints the times and the speed-up.
//
//     split [--lines N]
//
// The picture is the Mandelbrot set. Exits 1 if a split computes another picture than a single device.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/split.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace ez = vorn::mero::easy;

namespace {

constexpr std::size_t width = 1024;

constexpr char const* source = R"(
kernel void mandelbrot(global uint* steps, uint first_line, float scale) {
    float cr = get_global_id(0) * (3.0f / 1024.0f) - 2.0f;
    float ci = (get_global_id(1) + first_line) * scale - 1.5f;
    float r = 0.0f;
    float i = 0.0f;
    uint n = 0;
    while (n < 256 && r * r + i * i < 4.0f) {
        float t = r * r - i * i + cr;
        i = 2.0f * r * i + ci;
        r = t;
        ++n;
    }
    steps[get_global_id(1) * get_global_size(0) + get_global_id(0)] = n;
}
)";

double milliseconds_since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// The picture, and the time that it took.
struct result {
    std::vector<std::uint32_t> steps;
    double milliseconds;
};

// Computes the picture, each device its lines.
result compute(ez::split const& lines, std::vector<ez::kernel>& kernels, float scale) {
    auto steps = lines.array<std::uint32_t>(width);
    auto const start = std::chrono::steady_clock::now();
    lines.run([&](std::size_t k, ez::share const& part) {
        return kernels[k](ez::range(width, part.count).local(16), steps[k], std::uint32_t(part.offset), scale);
    });
    auto picture = steps.gather();
    return {std::move(picture), milliseconds_since(start)};
}

// The reference is the picture of the fastest device alone. Returns whether the split computes the same.
bool split(char const* what, std::vector<ez::session::device_type> const& devices, std::size_t height) {
    ez::devices const all(devices);
    auto kernels = all.kernels("mandelbrot", source, "-cl-opt-disable");
    float const scale = 3.0F / static_cast<float>(height);
    ez::split lines(all, height);
    // A few lines of the middle only: most of the work is there, and slow devices finish soon.
    auto const seconds = lines.measure({height / 2, 2}, [&](std::size_t k, ez::share const& part) {
        auto steps = all[k].array<std::uint32_t>(width * part.count);
        return kernels[k](ez::range(width, part.count).local(16), steps, std::uint32_t(part.offset), scale);
    });
    std::vector<double> fastest(all.size(), 0.0);
    fastest[static_cast<std::size_t>(std::min_element(seconds.begin(), seconds.end()) - seconds.begin())] = 1;
    auto const alone = compute(ez::split(all, height, fastest), kernels, scale);
    auto const together = compute(lines, kernels, scale);
    auto const different = static_cast<std::size_t>(std::inner_product(
        alone.steps.begin(), alone.steps.end(), together.steps.begin(), 0, std::plus<>(), std::not_equal_to<>()));

    std::printf("%s\n", what);
    for (std::size_t k = 0; k != all.size(); ++k) {
        auto const& device = all[k].device();
        std::printf("  %5zu of %zu lines  %s: %s\n", lines.shares()[k].count, height,
                    device.get_platform().name().c_str(), device.name().c_str());
    }
    std::printf("  fastest alone %.1f ms, together %.1f ms: %.2f times as fast; %zu of %zu points differ\n\n",
                alone.milliseconds, together.milliseconds, alone.milliseconds / together.milliseconds, different,
                alone.steps.size());
    return different <= alone.steps.size() / 1000; // platforms round differently, which matters at the set's edge
}

std::vector<ez::session::device_type> sub_devices_of_any(std::vector<ez::session::device_type> const& devices) {
    for (auto device : devices) {
        try {
            return device.partition_equally(std::max(device.max_compute_units() / 2, 1U));
        } catch (vorn::mero::common::error const&) { // this device cannot be partitioned
        }
    }
    return {};
}

} // namespace

int main(int count, char** arguments) {
    try {
        std::size_t const lines = std::stoul(example::option(count, arguments, "--lines", "512"));
        auto const devices = ez::find_devices();
        if (devices.empty()) {
            throw std::runtime_error("No device was found; NQ_BRIDGE_VERBOSE=1 says more.");
        }
        auto const parts = sub_devices_of_any(devices);
        bool right = true;
        if (parts.empty()) {
            std::printf("No device can be divided into sub-devices.\n\n");
        } else {
            right = split("Over the sub-devices of one device:", parts, lines);
        }
        right = split("Over all devices:", devices, lines) && right;
        return right ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "split: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
