// The product of two matrices.

#include "support.hpp"

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// A work-item for each element of the product: each float that is read is used once.
kernel void by_element(global float const* a, global float const* b, global float* c, uint size) {
    size_t x = get_global_id(0), y = get_global_id(1);
    float sum = 0.0f;
    for (uint k = 0; k < size; ++k) sum += a[y * size + k] * b[k * size + x];
    c[y * size + x] = sum;
}

// A work-item for a block of ROWS x 32 in registers: each float of b is used ROWS times, each of a 32 times.
kernel void by_block(global float const* a, global float const* b, global float* c, uint size) {
    size_t x = get_global_id(0) * 32, y = get_global_id(1) * ROWS;
    float16 left[ROWS], right[ROWS];
    for (int i = 0; i < ROWS; ++i) left[i] = right[i] = 0.0f;
    for (uint k = 0; k < size; ++k) {
        float16 l = vload16(0, b + k * size + x), r = vload16(1, b + k * size + x);
        #pragma unroll
        for (int i = 0; i < ROWS; ++i) {
            left[i] = fma(a[(y + i) * size + k], l, left[i]);
            right[i] = fma(a[(y + i) * size + k], r, right[i]);
        }
    }
    for (int i = 0; i < ROWS; ++i) {
        vstore16(left[i], 0, c + (y + i) * size + x);
        vstore16(right[i], 1, c + (y + i) * size + x);
    }
}
)";

static void matrix_multiply(cookbook::recipe const& here) {
    std::size_t const n = here.size(512, 64);
    std::size_t const rows = 8;
    std::vector<float> a(n * n);
    std::vector<float> b(n * n);
    for (std::size_t i = 0; i != n * n; ++i) { // so that all sums are exact
        a[i] = static_cast<float>(i * 7 % 13) - 6;
        b[i] = static_cast<float>(i * 5 % 11) - 5;
    }
    std::vector<float> expected(n * n);
    for (std::size_t i = 0; i != n * n * n; ++i) {
        expected[i / n / n * n + i % n] += a[i / n] * b[i / n % n * n + i % n];
    }

    ez::session gpu;
    auto program = gpu.build(source, ez::build_options().define("ROWS", rows));
    auto by_element = program["by_element"];
    auto by_block = program["by_block"];
    auto left = gpu.array(a), right = gpu.array(b);
    auto slow = gpu.array<float>(n * n), fast = gpu.array<float>(n * n);
    auto const size = static_cast<std::uint32_t>(n);
    here.compare([&] { return by_element(ez::range(n, n), left, right, slow, size).time(); },
                 [&] { return by_block(ez::range(n / 32, n / rows).local(1), left, right, fast, size).time(); });
    here.check(slow.read() == expected, "the product by elements is wrong");
    here.check(fast.read() == expected, "the product by blocks is wrong");
}

int main(int count, char** arguments) { return cookbook::run("matrix_multiply", matrix_multiply, count, arguments); }
