// Numbers in order.

#include "support.hpp"

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// One step of a bitonic network: each work-item puts one pair in order. There are log2(n) * (log2(n) + 1) / 2 steps.
kernel void bitonic(global uint* x, uint run, uint distance) {
    size_t i = get_global_id(0), a = i / distance * distance * 2 + i % distance, b = a + distance;
    uint low = min(x[a], x[b]), high = max(x[a], x[b]);
    bool rises = (a & run) == 0;
    x[a] = rises ? low : high;
    x[b] = rises ? high : low;
}

// Four passes by radix 256. Each work-item has a stretch: it counts the digits there, learns from the sum of the counts
// before its own where each digit begins, and moves its numbers there, in order.
kernel void count(global uint const* x, global uint* counts, uint length, uint shift) {
    uint mine[256] = {0};
    size_t own = get_global_id(0), begin = own * length;
    for (size_t i = begin; i < begin + length; ++i) ++mine[x[i] >> shift & 255];
    for (uint digit = 0; digit < 256; ++digit) counts[digit * get_global_size(0) + own] = mine[digit];
}
kernel void scan(global uint* counts, uint size) {
    uint sum = 0;
    for (uint i = 0; i < size; ++i) {
        uint own = counts[i];
        counts[i] = sum;
        sum += own;
    }
}
kernel void move(global uint const* x, global uint const* counts, global uint* to, uint length, uint shift) {
    uint place[256];
    size_t own = get_global_id(0), begin = own * length;
    for (uint digit = 0; digit < 256; ++digit) place[digit] = counts[digit * get_global_size(0) + own];
    for (size_t i = begin; i < begin + length; ++i) to[place[x[i] >> shift & 255]++] = x[i];
}
)";

static void sort(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 18, 1 << 10);
    std::size_t const items = 16;
    std::vector<std::uint32_t> values(n);
    for (std::size_t i = 0; i != n; ++i) {
        values[i] = static_cast<std::uint32_t>(i * i * 2654435761U + i);
    }
    auto expected = values;
    std::sort(expected.begin(), expected.end());

    ez::session gpu;
    auto program = gpu.build(source);
    auto bitonic = program["bitonic"], count = program["count"], scan = program["scan"], move = program["move"];
    auto slow = gpu.array<std::uint32_t>(n), fast = gpu.array<std::uint32_t>(n), other = gpu.array<std::uint32_t>(n);
    auto counts = gpu.array<std::uint32_t>(256 * items);
    here.compare(
        [&] {
            slow.write(values);
            std::chrono::nanoseconds took{};
            for (std::uint32_t run = 2; run <= n; run *= 2) {
                for (std::uint32_t distance = run / 2; distance != 0; distance /= 2) {
                    took += bitonic(ez::range(n / 2), slow, run, distance).time();
                }
            }
            return took;
        },
        [&] {
            fast.write(values);
            std::chrono::nanoseconds took{};
            auto const length = static_cast<std::uint32_t>(n / items);
            for (std::uint32_t shift = 0; shift != 32; shift += 8) {
                auto counted = count(ez::range(items).local(1), fast, counts, length, shift);
                auto scanned = scan(ez::range(1), counts, std::uint32_t(256 * items));
                auto moved = move(ez::range(items).local(1), fast, counts, other, length, shift);
                took += counted.time() + scanned.time() + moved.time();
                std::swap(fast, other);
            }
            return took;
        });
    here.check(slow.read() == expected, "the bitonic network leaves disorder");
    here.check(fast.read() == expected, "the radix leaves disorder");
    std::printf("%zu numbers from %u to %u\n", n, expected.front(), expected.back());
}

int main(int count, char** arguments) { return cookbook::run("sort", sort, count, arguments); }
