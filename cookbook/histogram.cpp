// How often each of 256 values occurs.

#include "support.hpp"

#include <numeric>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// Every work-item counts in the same 256 places, with an atomic addition for each byte.
kernel void shared(global uchar const* bytes, global uint* counts) {
    atomic_inc(counts + bytes[get_global_id(0)]);
}

// Every work-item counts a stretch in places of its own, and adds these to the result once.
kernel void own(global uchar16 const* bytes, global uint* counts, uint length) {
    uint mine[256] = {0};
    bytes += get_global_id(0) * length;
    for (uint i = 0; i < length; ++i) {
        uchar16 v = bytes[i];
        ++mine[v.s0]; ++mine[v.s1]; ++mine[v.s2]; ++mine[v.s3]; ++mine[v.s4]; ++mine[v.s5]; ++mine[v.s6]; ++mine[v.s7];
        ++mine[v.s8]; ++mine[v.s9]; ++mine[v.sa]; ++mine[v.sb]; ++mine[v.sc]; ++mine[v.sd]; ++mine[v.se]; ++mine[v.sf];
    }
    for (uint i = 0; i < 256; ++i) atomic_add(counts + i, mine[i]);
}
)";

static void histogram(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 22, 1 << 12);
    std::size_t const items = 64;
    std::vector<std::uint8_t> bytes(n);
    std::vector<std::uint32_t> expected(256);
    for (std::size_t i = 0; i != n; ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 2654435761U >> 23 & i >> 3);
        ++expected[bytes[i]];
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto shared = program["shared"];
    auto own = program["own"];
    auto input = gpu.array(bytes);
    auto slow = gpu.array<std::uint32_t>(256);
    auto fast = gpu.array<std::uint32_t>(256);
    here.compare(
        [&] {
            slow.fill(0);
            return shared(ez::range(n), input, slow).time();
        },
        [&] {
            fast.fill(0);
            return own(ez::range(items).local(1), input, fast, std::uint32_t(n / 16 / items)).time();
        });
    here.check(slow.read() == expected, "the shared counts are wrong");
    here.check(fast.read() == expected, "the counts of each work-item's own are wrong");
    auto const most = std::max_element(expected.begin(), expected.end());
    std::printf("the byte %td occurs %u times in %zu\n", most - expected.begin(), *most, n);
}

int main(int count, char** arguments) { return cookbook::run("histogram", histogram, count, arguments); }
