// The elements that pass a test, side by side.

#include "support.hpp"

#include <numeric>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
bool passes(float x) { return x > 0.5f; }

// Every element that passes takes the next place from one counter, which all wait for; the order is lost.
kernel void by_counter(global float const* x, global float* to, global uint* counter) {
    float own = x[get_global_id(0)];
    if (passes(own)) to[atomic_inc(counter)] = own;
}

// Each work-item counts those of a stretch, then writes them behind those of the stretches before: in order.
kernel void count(global float const* x, global uint* counts, uint length) {
    size_t begin = get_global_id(0) * length;
    uint mine = 0;
    for (size_t i = begin; i < begin + length; ++i) mine += passes(x[i]);
    counts[get_global_id(0)] = mine;
}
kernel void gather(global float const* x, global float* to, global uint const* counts, uint length) {
    size_t begin = get_global_id(0) * length;
    uint place = 0;
    for (size_t i = 0; i < get_global_id(0); ++i) place += counts[i];
    for (size_t i = begin; i < begin + length; ++i)
        if (passes(x[i])) to[place++] = x[i];
}
)";

static void compaction(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 22, 1 << 12);
    std::size_t const items = 64;
    std::vector<float> values(n);
    for (std::size_t i = 0; i != n; ++i) {
        values[i] = static_cast<float>(i * 2654435761U >> 12 & 1023) / 1023;
    }
    std::vector<float> expected;
    std::copy_if(values.begin(), values.end(), std::back_inserter(expected), [](float x) { return x > 0.5F; });

    ez::session gpu;
    auto program = gpu.build(source);
    auto by_counter = program["by_counter"], count = program["count"], gather = program["gather"];
    auto x = gpu.array(values);
    auto slow = gpu.array<float>(n), fast = gpu.array<float>(n);
    auto counter = gpu.array<std::uint32_t>(1), counts = gpu.array<std::uint32_t>(items);
    here.compare(
        [&] {
            counter.fill(0);
            return by_counter(ez::range(n), x, slow, counter).time();
        },
        [&] {
            auto const length = static_cast<std::uint32_t>(n / items);
            auto counted = count(ez::range(items).local(1), x, counts, length);
            auto gathered = gather(ez::range(items).local(1), x, fast, counts, length);
            return counted.time() + gathered.time();
        });

    auto const number = counts.read();
    here.check(std::accumulate(number.begin(), number.end(), std::size_t{0}) == expected.size(),
               "the counts are wrong");
    auto gathered = fast.read();
    gathered.resize(expected.size());
    here.check(gathered == expected, "the gathered elements are wrong");
    auto unordered = slow.read();
    here.check(counter.read()[0] == expected.size(), "the counter is wrong");
    unordered.resize(expected.size());
    std::sort(unordered.begin(), unordered.end());
    std::sort(expected.begin(), expected.end());
    here.check(unordered == expected, "the elements by the counter are wrong");
    std::printf("%zu of %zu pass\n", expected.size(), n);
}

int main(int count, char** arguments) { return cookbook::run("compaction", compaction, count, arguments); }
