// The sum of many numbers.

#include "support.hpp"

#include <numeric>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// A work-item for each number: half of the group adds the other half, until one is left.
kernel void tree(global float const* x, global float* sums, local float* part) {
    size_t i = get_local_id(0);
    part[i] = x[get_global_id(0)];
    for (size_t left = get_local_size(0) / 2; left != 0; left /= 2) {
        barrier(CLK_LOCAL_MEM_FENCE);
        if (i < left) part[i] += part[i + left];
    }
    if (i == 0) sums[get_group_id(0)] = part[0];
}

// A work-item for many numbers: sixteen sums at a time in a register, and neither local memory nor barriers.
kernel void serial(global float16 const* x, global float* sums, uint length) {
    float16 sum = 0.0f;
    x += get_global_id(0) * length;
    for (uint i = 0; i < length; ++i) sum += x[i];
    float8 eight = sum.lo + sum.hi;
    float4 four = eight.lo + eight.hi;
    sums[get_global_id(0)] = four.x + four.y + four.z + four.w;
}
)";

static void reduction(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 23, 1 << 14);
    std::size_t const group = 256;
    std::size_t const items = 256;
    std::vector<float> values(n);
    for (std::size_t i = 0; i != n; ++i) {
        values[i] = static_cast<float>(i % 8);
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto tree = program["tree"];
    auto serial = program["serial"];
    auto x = gpu.array(values);
    auto tree_sums = gpu.array<float>(n / group);
    auto serial_sums = gpu.array<float>(items);
    here.compare(
        [&] { return tree(ez::range(n).local(group), x, tree_sums, ez::local<float>(group)).time(); },
        [&] { return serial(ez::range(items).local(1), x, serial_sums, std::uint32_t(n / 16 / items)).time(); });

    for (auto const& sums : {tree_sums.read(), serial_sums.read()}) { // few are left: the host adds them
        double const sum = std::accumulate(sums.begin(), sums.end(), 0.0);
        here.check(sum == 3.5 * static_cast<double>(n), "the sum is wrong");
        std::printf("sum %.0f of %zu numbers\n", sum, sums.size());
    }
}

int main(int count, char** arguments) { return cookbook::run("reduction", reduction, count, arguments); }
