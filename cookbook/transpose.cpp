// The transpose of a matrix: rows become columns.

#include "support.hpp"

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// A work-item for each element: neighbours read side by side, but each writes to a line of the cache of its own.
kernel void by_element(global float const* from, global float* to, uint size) {
    size_t x = get_global_id(0), y = get_global_id(1);
    to[x * size + y] = from[y * size + x];
}

// A work-item for a square of 16 x 16: it reads and writes whole lines of the cache, 16 floats each.
kernel void by_square(global float const* from, global float* to, uint size) {
    size_t x = get_global_id(0) * 16, y = get_global_id(1) * 16;
    float square[16][16];
    for (int i = 0; i < 16; ++i) vstore16(vload16(0, from + (y + i) * size + x), 0, square[i]);
    for (int i = 0; i < 16; ++i) {
        float line[16];
        for (int j = 0; j < 16; ++j) line[j] = square[j][i];
        vstore16(vload16(0, line), 0, to + (x + i) * size + y);
    }
}
)";

static void transpose(cookbook::recipe const& here) {
    std::size_t const n = here.size(4096, 64);
    std::vector<float> values(n * n);
    for (std::size_t i = 0; i != n * n; ++i) {
        values[i] = static_cast<float>(i % 65521);
    }
    std::vector<float> expected(n * n);
    for (std::size_t i = 0; i != n * n; ++i) {
        expected[i % n * n + i / n] = values[i];
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto by_element = program["by_element"];
    auto by_square = program["by_square"];
    auto matrix = gpu.array(values);
    auto slow = gpu.array<float>(n * n);
    auto fast = gpu.array<float>(n * n);
    auto const size = static_cast<std::uint32_t>(n);
    here.compare([&] { return by_element(ez::range(n, n), matrix, slow, size).time(); },
                 [&] { return by_square(ez::range(n / 16, n / 16), matrix, fast, size).time(); });
    here.check(slow.read() == expected, "the transpose by elements is wrong");
    here.check(fast.read() == expected, "the transpose by squares is wrong");
    std::printf("%zu x %zu floats\n", n, n);
}

int main(int count, char** arguments) { return cookbook::run("transpose", transpose, count, arguments); }
