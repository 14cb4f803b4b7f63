// One context, two C++ interfaces: a program that uses the Khronos C++ bindings gets a session in their context. A
// kernel of the session works on their buffer; then their queue reads an array of the session.
//
//     khronos_bindings [--elements N]

#define CL_HPP_ENABLE_EXCEPTIONS
#define CL_HPP_MINIMUM_OPENCL_VERSION 120
#define CL_HPP_TARGET_OPENCL_VERSION 120
#define CL_TARGET_OPENCL_VERSION 120

#include "support.hpp"

#include <CL/opencl.hpp>
#include <vorn/mero/easy/borders.hpp>

#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace easy = vorn::mero::easy;

namespace {

// Theirs, as such a program has it already.
struct simulation {
    explicit simulation(std::size_t elements)
        : context(CL_DEVICE_TYPE_ALL), device(context.getInfo<CL_CONTEXT_DEVICES>().front()), queue(context, device),
          positions(context, CL_MEM_READ_WRITE, elements * sizeof(float)) {
        std::vector<float> start(elements);
        std::iota(start.begin(), start.end(), 0.0F);
        queue.enqueueWriteBuffer(positions, CL_TRUE, 0, elements * sizeof(float), start.data());
    }

    cl::Context context;
    cl::Device device;
    cl::CommandQueue queue;
    cl::Buffer positions;
};

bool run(std::size_t elements) {
    simulation theirs(elements);
    auto const gpu = easy::session::on_device_of(theirs.context(), theirs.device());
    auto const program = gpu.build("kernel void square(global float const* x, global float* y) {"
                                   "    size_t i = get_global_id(0); y[i] = x[i] * x[i]; }");
    // the buffer belongs to both: each holds a reference
    auto positions = easy::from_cl<easy::array<float>>(theirs.positions(), gpu, easy::retain);
    auto squares = gpu.array<float>(positions.size());
    auto const squared = program["square"](easy::range(positions.size()), positions, squares);

    gpu.flush(); // another queue waits for its command
    std::vector<cl::Event> const after{cl::Event(easy::to_cl(squared), true)};
    std::vector<float> result(elements);
    theirs.queue.enqueueReadBuffer(cl::Buffer(easy::to_cl(squares), true), CL_TRUE, 0, elements * sizeof(float),
                                   result.data(), &after);
    for (std::size_t i = 0; i != elements; ++i) {
        auto const x = static_cast<float>(i);
        if (result[i] != x * x) {
            std::fprintf(stderr, "element %zu is %g\n", i, static_cast<double>(result[i]));
            return false;
        }
    }
    std::printf("%s: %zu squares by a session in a context of the Khronos C++ bindings, read by their queue\n",
                gpu.device().name().c_str(), elements);
    return true;
}

} // namespace

int main(int count, char** arguments) {
    try {
        return run(std::strtoul(example::option(count, arguments, "--elements", "1000").c_str(), nullptr, 10))
                   ? EXIT_SUCCESS
                   : EXIT_FAILURE;
    } catch (cl::Error const& failure) {
        std::fprintf(stderr, "%s returns %d\n", failure.what(), failure.err());
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
    }
    return EXIT_FAILURE;
}
