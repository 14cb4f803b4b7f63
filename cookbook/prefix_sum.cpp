// The running sum of many numbers.

#include "support.hpp"

#include <numeric>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// One pass: each element adds the one that is `distance` before it. Distances 1, 2, 4, ... need log2(n) passes.
kernel void pass(global uint const* from, global uint* to, uint distance) {
    size_t i = get_global_id(0);
    to[i] = i < distance ? from[i] : from[i] + from[i - distance];
}

// Three launches that read the numbers twice: the sum of each block, the running sum of these, each block again.
kernel void sum_blocks(global uint const* x, global uint* sums, uint length) {
    global uint const* block = x + get_global_id(0) * length;
    uint sum = 0;
    for (uint i = 0; i < length; ++i) sum += block[i];
    sums[get_global_id(0)] = sum;
}
kernel void scan_sums(global uint* sums, uint count) {
    uint sum = 0;
    for (uint i = 0; i < count; ++i) {
        uint own = sums[i];
        sums[i] = sum;
        sum += own;
    }
}
kernel void scan_blocks(global uint const* x, global uint const* sums, global uint* to, uint length) {
    size_t begin = get_global_id(0) * length;
    uint sum = sums[get_global_id(0)];
    for (size_t i = begin; i < begin + length; ++i) to[i] = sum += x[i];
}
)";

static void prefix_sum(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 22, 1 << 12);
    std::size_t const blocks = 64;
    std::vector<std::uint32_t> values(n);
    for (std::size_t i = 0; i != n; ++i) {
        values[i] = static_cast<std::uint32_t>(i * 2654435761U >> 24);
    }
    std::vector<std::uint32_t> expected(n);
    std::partial_sum(values.begin(), values.end(), expected.begin());

    ez::session gpu;
    auto program = gpu.build(source);
    auto pass = program["pass"];
    auto sum_blocks = program["sum_blocks"];
    auto scan_sums = program["scan_sums"];
    auto scan_blocks = program["scan_blocks"];
    auto x = gpu.array(values);
    auto passed = gpu.array<std::uint32_t>(n);
    auto other = gpu.array<std::uint32_t>(n);
    auto scanned = gpu.array<std::uint32_t>(n);
    auto sums = gpu.array<std::uint32_t>(blocks);
    here.compare(
        [&] {
            x.copy_to(passed);
            std::chrono::nanoseconds took{};
            for (std::uint32_t distance = 1; distance < n; distance *= 2) {
                took += pass(ez::range(n), passed, other, distance).time();
                std::swap(passed, other);
            }
            return took;
        },
        [&] {
            auto const length = static_cast<std::uint32_t>(n / blocks);
            auto summed = sum_blocks(ez::range(blocks).local(1), x, sums, length);
            auto between = scan_sums(ez::range(1), sums, std::uint32_t(blocks));
            auto done = scan_blocks(ez::range(blocks).local(1), x, sums, scanned, length);
            return summed.time() + between.time() + done.time();
        });
    here.check(passed.read() == expected, "the passes give a wrong sum");
    here.check(scanned.read() == expected, "the blocks give a wrong sum");
    std::printf("the last of %zu sums is %u\n", n, expected.back());
}

int main(int count, char** arguments) { return cookbook::run("prefix_sum", prefix_sum, count, arguments); }
