// Uploads, computes and downloads chunks of a job at the same time, on an out-of-order queue, and draws the timeline of
// its events as SVG.
//
//     pipeline [TIMELINE.svg] [--platform TEXT]

#include "support.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace cl = vorn::mero::opencl_1_2;
namespace easy = vorn::mero::easy;
using api = vorn::mero::api<120>;

namespace {

constexpr std::size_t chunks = 8;
constexpr std::size_t chunk_elements = std::size_t{1} << 18;
constexpr std::size_t chunk_bytes = chunk_elements * sizeof(float);

constexpr char const* source = R"(
kernel void iterate(global float* values) {
    size_t i = get_global_id(0);
    float v = values[i];
    for (int k = 0; k != 64; ++k)
        v = v * 0.5f + 1.0f;
    values[i] = v;
}
)";

enum class stage { upload, compute, download };

struct step {
    stage kind;
    std::size_t chunk;
    cl::event event;
};

// Each chunk waits only for its own steps; the queue may run steps of different chunks at the same time.
std::vector<step> enqueue(cl::command_queue& queue, std::vector<cl::buffer>& buffers, std::vector<cl::kernel>& kernels,
                          std::vector<float>& values) {
    std::vector<step> steps;
    for (std::size_t i = 0; i != chunks; ++i) {
        float* const host = values.data() + i * chunk_elements;
        cl::event uploaded = queue.enqueue_command(cl::write_buffer(buffers[i], false, 0, chunk_bytes, host));
        _nq_cl_event* const before_launch[] = {cl::raw::get_raw_event(uploaded)};
        cl::event computed = queue.enqueue_command(api::launch(kernels[i], chunk_elements, 64), 1, before_launch);
        _nq_cl_event* const before_read[] = {cl::raw::get_raw_event(computed)};
        cl::event downloaded =
            queue.enqueue_command(cl::read_buffer(buffers[i], false, 0, chunk_bytes, host), 1, before_read);
        steps.push_back({stage::upload, i, std::move(uploaded)});
        steps.push_back({stage::compute, i, std::move(computed)});
        steps.push_back({stage::download, i, std::move(downloaded)});
    }
    return steps;
}

std::vector<step> run(cl::device const& device, std::vector<float>& values) {
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::command_queue queue = context.create_command_queue(device, true, true);
    cl::program program = easy::build<120>(context, device, source);
    std::vector<cl::buffer> buffers;
    std::vector<cl::kernel> kernels;
    for (std::size_t i = 0; i != chunks; ++i) {
        buffers.push_back(context.create_buffer(cl::mem_flags::read_write, chunk_bytes, nullptr));
        kernels.push_back(program.create_kernel("iterate"));
        kernels.back().set_argument(0, buffers.back());
    }
    easy::finish_guard const guard(queue); // the commands use `values` also where one of the calls fails
    auto steps = enqueue(queue, buffers, kernels, values);
    queue.finish();
    return steps;
}

float expected(float v) {
    for (int k = 0; k != 64; ++k) {
        v = v * 0.5F + 1.0F;
    }
    return v;
}

bool check(std::vector<float> const& values) {
    for (std::size_t i = 0; i != values.size(); ++i) {
        if (std::abs(values[i] - expected(static_cast<float>(i % 1000))) > 1e-5F) {
            return false;
        }
    }
    return true;
}

constexpr char const* colour_of(stage kind) {
    return kind == stage::upload ? "#4477aa" : kind == stage::compute ? "#cc6677" : "#228833";
}

// One line for each chunk, with one bar for each command from its start to its end.
void draw(std::string const& path, std::vector<step> const& steps) {
    constexpr double width = 900;
    constexpr double line = 24;
    std::uint64_t first = UINT64_MAX;
    std::uint64_t last = 0;
    for (step const& s : steps) {
        first = std::min(first, s.event.profile_command_start());
        last = std::max(last, s.event.profile_command_end());
    }
    double const scale = width / static_cast<double>(std::max<std::uint64_t>(last - first, 1));
    std::ofstream svg(path);
    svg << R"(<svg xmlns="http://www.w3.org/2000/svg" width="1000" height=")" << line * (chunks + 2)
        << R"(" font-family="sans-serif" font-size="12">)" << '\n'
        << R"(<rect width="1000" height="100%" fill="white"/>)" << '\n';
    for (step const& s : steps) {
        double const start = static_cast<double>(s.event.profile_command_start() - first) * scale;
        double const end = static_cast<double>(s.event.profile_command_end() - first) * scale;
        svg << R"(<rect x=")" << 80 + start << R"(" y=")" << line * static_cast<double>(s.chunk) + 4 << R"(" width=")"
            << std::max(end - start, 0.5) << R"(" height=")" << line - 6 << R"(" fill=")" << colour_of(s.kind)
            << R"("/>)" << '\n';
    }
    for (std::size_t i = 0; i != chunks; ++i) {
        svg << R"(<text x="8" y=")" << line * static_cast<double>(i) + 18 << R"(">chunk )" << i << "</text>\n";
    }
    svg << R"(<text x="80" y=")" << line * (chunks + 1) << R"("><tspan fill=")" << colour_of(stage::upload)
        << R"(">upload</tspan>  <tspan fill=")" << colour_of(stage::compute) << R"(">compute</tspan>  <tspan fill=")"
        << colour_of(stage::download) << R"(">download</tspan>  of )" << static_cast<double>(last - first) * 1e-6
        << " ms in all</text>\n</svg>\n";
    if (!svg.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

} // namespace

int main(int count, char** arguments) {
    try {
        auto const device =
            easy::find_device<120>(example::option(count, arguments, "--platform", ""),
                                   [](cl::device const& d) { return d.out_of_order_command_queue_supported(); });
        std::vector<float> values(chunks * chunk_elements);
        for (std::size_t i = 0; i != values.size(); ++i) {
            values[i] = static_cast<float>(i % 1000);
        }
        auto const steps = run(device, values);
        if (count > 1 && arguments[1][0] != '-') {
            draw(arguments[1], steps);
        }
        bool const right = check(values);
        std::printf("%s: %zu chunks of %zu floats, %s\n", device.name().c_str(), chunks, chunk_elements,
                    right ? "all right" : "wrong values");
        return right ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "pipeline: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
