// Splits one job over several devices: over the sub-devices of one, and over all devices of all platforms. Measures the
// speed of each device, and gives each lines of the picture in proportion. Prints the times and the speed-up.
//
//     split [--lines N]
//
// The picture is the Mandelbrot set. Exits 1 if a split computes another picture than a single device.

#include "support.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace cl = vorn::mero::opencl_1_2;
namespace easy = vorn::mero::easy;

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

// One device with the objects for its share of the lines.
class worker {
public:
    worker(cl::device const& device, std::size_t lines)
        : name_(device.get_platform().name() + ": " + device.name()),
          context_(cl::create_context({}, {device}, nullptr, nullptr)),
          queue_(context_.create_command_queue(device, false, false)),
          program_(easy::build<120>(context_, device, source, "-cl-opt-disable")),
          kernel_(program_.create_kernel("mandelbrot")),
          steps_(context_.create_buffer(cl::mem_flags::write_only, lines * width * sizeof(std::uint32_t), nullptr)),
          scale_(3.0F / static_cast<float>(lines)) {}

    std::string const& name() const { return name_; }

    /// Starts computing some lines; when `finish` returns, they are in `steps`.
    void start(std::size_t first_line, std::size_t lines, std::uint32_t* steps) {
        if (lines == 0) {
            return;
        }
        auto const first = static_cast<std::uint32_t>(first_line);
        kernel_.set_argument(0, steps_);
        kernel_.set_argument_raw(1, sizeof first, &first);
        kernel_.set_argument_raw(2, sizeof scale_, &scale_);
        queue_.enqueue_command_without_event(cl::nd_range_kernel(kernel_, 2, {0, 0, 0}, {width, lines, 1}, {16, 1, 1}));
        pending_.push_back(queue_.enqueue_command(
            cl::read_buffer(steps_, false, 0, lines * width * sizeof *steps, steps + first_line * width)));
    }

    void flush() { queue_.flush(); }

    // Waits for the read itself: after a flush, `finish` of the queue may return too early (seen on rusticl 22.3).
    void finish() {
        for (cl::event const& read : pending_) {
            _nq_cl_event* const raw = cl::raw::get_raw_event(read);
            context_.wait_for_events(1, &raw);
        }
        pending_.clear();
    }

private:
    std::string name_;
    cl::context context_;
    cl::command_queue queue_;
    cl::program program_;
    cl::kernel kernel_;
    cl::buffer steps_;
    float scale_;
    std::vector<cl::event> pending_;
};

// Computes the picture with the given number of lines for each worker. Returns the time in milliseconds.
double compute(std::vector<worker>& workers, std::vector<std::size_t> const& shares,
               std::vector<std::uint32_t>& steps) {
    auto const start = std::chrono::steady_clock::now();
    std::size_t line = 0;
    for (std::size_t i = 0; i != workers.size(); ++i) {
        workers[i].start(line, shares[i], steps.data());
        line += shares[i];
    }
    for (worker& each : workers) {
        each.flush();
    }
    for (worker& each : workers) {
        each.finish();
    }
    return milliseconds_since(start);
}

// The number of lines for each worker, from the time that each took for the same lines.
std::vector<std::size_t> share_out(std::size_t lines, std::vector<double> const& times) {
    double speed = 0;
    for (double const time : times) {
        speed += 1 / time;
    }
    std::vector<std::size_t> shares;
    shares.reserve(times.size());
    for (double const time : times) {
        shares.push_back(static_cast<std::size_t>(static_cast<double>(lines) / time / speed));
    }
    std::size_t const given = std::accumulate(shares.begin(), shares.end(), std::size_t{0});
    *std::max_element(shares.begin(), shares.end()) += lines - given;
    return shares;
}

// Times each worker alone, on a few lines of the middle only: most of the work is there, and slow workers finish soon.
std::vector<double> probe(std::vector<worker>& workers, std::size_t lines, std::vector<std::uint32_t>& steps) {
    std::vector<double> times;
    for (worker& each : workers) {
        for (int turn = 0; turn != 2; ++turn) { // the first turn fills the caches
            auto const start = std::chrono::steady_clock::now();
            each.start(lines / 2, 2, steps.data());
            each.finish();
            times.resize(times.size() + (turn == 0 ? 1 : 0));
            times.back() = milliseconds_since(start);
        }
    }
    return times;
}

// The reference is the picture of the fastest worker alone. Returns whether the split computes the same.
bool split(char const* what, std::vector<cl::device> const& devices, std::size_t lines) {
    std::vector<std::uint32_t> alone(lines * width);
    std::vector<std::uint32_t> together(lines * width);
    std::vector<worker> workers;
    workers.reserve(devices.size());
    for (cl::device const& device : devices) {
        workers.emplace_back(device, lines);
    }
    auto const times = probe(workers, lines, alone);
    auto const shares = share_out(lines, times);
    std::vector<std::size_t> one(workers.size(), 0);
    one[static_cast<std::size_t>(std::min_element(times.begin(), times.end()) - times.begin())] = lines;
    double const time_alone = compute(workers, one, alone);
    double const time_together = compute(workers, shares, together);
    auto const different = static_cast<std::size_t>(
        std::inner_product(alone.begin(), alone.end(), together.begin(), 0, std::plus<>(), std::not_equal_to<>()));

    std::printf("%s\n", what);
    for (std::size_t i = 0; i != workers.size(); ++i) {
        std::printf("  %5zu of %zu lines  %s\n", shares[i], lines, workers[i].name().c_str());
    }
    std::printf("  fastest alone %.1f ms, together %.1f ms: %.2f times as fast; %zu of %zu points differ\n\n",
                time_alone, time_together, time_alone / time_together, different, alone.size());
    return different <= alone.size() / 1000; // platforms round differently, which matters at the set's edge
}

std::vector<cl::device> sub_devices_of_any(std::vector<cl::device> const& devices) {
    for (cl::device device : devices) {
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
        auto const devices = easy::find_devices<120>();
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
