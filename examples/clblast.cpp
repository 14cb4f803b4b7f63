// A library that knows OpenCL's handles alone works on this library's arrays: CLBlast multiplies two matrices that a
// kernel made, on the queue of the session, and a kernel goes on with the product when the library's event says so.
//
//     clblast [--size N] [--platform TEXT]

#include "support.hpp"

#include <vorn/mero/easy/borders.hpp>

#include <clblast.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace easy = vorn::mero::easy;

namespace {

constexpr char const* source = R"(
kernel void fill(global float* a, global float* b, uint n) {
    size_t row = get_global_id(1), column = get_global_id(0);
    a[row * n + column] = (float)((row + 2 * column) % 7) - 3.0f;
    b[row * n + column] = (float)((3 * row + column) % 5) - 2.0f;
}

kernel void halve(global float* c) {
    c[get_global_id(0)] *= 0.5f;
}
)";

// An element of half the product, as the host finds it.
float expected(std::size_t n, std::size_t row, std::size_t column) {
    float sum = 0;
    for (std::size_t i = 0; i != n; ++i) {
        sum += (static_cast<float>((row + 2 * i) % 7) - 3.0F) * (static_cast<float>((3 * i + column) % 5) - 2.0F);
    }
    return sum / 2;
}

std::size_t count_wrong(std::vector<float> const& c, std::size_t n) {
    std::size_t wrong = 0;
    for (std::size_t i = 0; i != c.size(); ++i) {
        wrong += std::fabs(c[i] - expected(n, i / n, i % n)) > 1e-3F ? 1U : 0U;
    }
    return wrong;
}

// The milliseconds of the library's kernels.
double multiply(easy::session const& gpu, std::size_t n) {
    auto const program = gpu.build(source);
    auto a = gpu.array<float>(n * n);
    auto b = gpu.array<float>(n * n);
    auto c = gpu.array<float>(n * n);
    program["fill"](easy::range(n, n), a, b, static_cast<std::uint32_t>(n));

    cl_command_queue queue = easy::to_cl(gpu.queue());
    cl_event handle = nullptr;
    auto const status =
        clblast::Gemm(clblast::Layout::kRowMajor, clblast::Transpose::kNo, clblast::Transpose::kNo, n, n, n, 1.0F,
                      easy::to_cl(a), 0, n, easy::to_cl(b), 0, n, 0.0F, easy::to_cl(c), 0, n, &queue, &handle);
    if (status != clblast::StatusCode::kSuccess) {
        throw std::runtime_error("CLBlast returns " + std::to_string(static_cast<int>(status)));
    }
    auto const product = easy::from_cl<easy::event>(handle, gpu, easy::take_over); // CLBlast leaves it to its caller
    program["halve"](easy::range(n * n), easy::after(product), c);
    if (std::size_t const wrong = count_wrong(c.read(), n)) {
        throw std::runtime_error(std::to_string(wrong) + " elements are wrong");
    }
    return static_cast<double>(product.time().count()) * 1e-6;
}

} // namespace

int main(int count, char** arguments) {
    std::size_t const n = std::strtoul(example::option(count, arguments, "--size", "192").c_str(), nullptr, 10);
    try {
        easy::session const gpu(example::option(count, arguments, "--platform", ""));
        double const first = multiply(gpu, n); // builds the library's kernels
        double const milliseconds = multiply(gpu, n);
        std::printf("%s: %zu x %zu is right; CLBlast took %.2f ms, %.2f ms the first time\n",
                    gpu.device().name().c_str(), n, n, milliseconds, first);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}
