// Pi from random points, with random numbers of the host and of the device itself.

#include "support.hpp"

#include <array>
#include <cmath>
#include <numeric>
#include <random>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// Counts the points of the host that are in the circle.
kernel void of_host(global float2 const* points, global uint* inside) {
    float2 p = points[get_global_id(0)];
    if (p.x * p.x + p.y * p.y < 1.0f) atomic_inc(inside);
}

// Random numbers without a state (Philox 4x32-10): the n-th four come from n and a key alone. Here sixteen n at a time.
typedef struct { uint16 x, y, z, w; } numbers;
uint16 high(uint16 a, uint b) { return convert_uint16(convert_ulong16(a) * b >> 32); }
numbers philox(numbers n, uint key0, uint key1) {
    for (int round = 0; round < 10; ++round, key0 += 0x9E3779B9u, key1 += 0xBB67AE85u) {
        numbers next = {high(n.z, 0xCD9E8D57u) ^ n.y ^ key0, n.z * 0xCD9E8D57u,
                        high(n.x, 0xD2511F53u) ^ n.w ^ key1, n.x * 0xD2511F53u};
        n = next;
    }
    return n;
}

// Every work-item makes points of its own and counts in a register: no memory is read.
kernel void of_device(global uint* inside, uint rounds, uint key) {
    float16 found = 0.0f, one = 1.0f;
    for (uint i = 0; i < rounds; ++i) {
        numbers n = {i * 16 + (uint16)(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15), get_global_id(0), 0, 0};
        n = philox(n, key, 0);
        float16 x = convert_float16(n.x) * 0x1p-32f, y = convert_float16(n.y) * 0x1p-32f;
        found += x * x + y * y < 1.0f ? one : (float16)0.0f;
        x = convert_float16(n.z) * 0x1p-32f, y = convert_float16(n.w) * 0x1p-32f;
        found += x * x + y * y < 1.0f ? one : (float16)0.0f;
    }
    float8 eight = found.lo + found.hi;
    float4 four = eight.lo + eight.hi;
    inside[get_global_id(0)] = four.x + four.y + four.z + four.w;
}

kernel void known(global uint* n, uint key0, uint key1) {
    numbers all = {n[0], n[1], n[2], n[3]};
    all = philox(all, key0, key1);
    n[0] = all.x.s0; n[1] = all.y.s0; n[2] = all.z.s0; n[3] = all.w.s0;
}
)";

static void monte_carlo(cookbook::recipe const& here) {
    std::size_t const n = here.size(1 << 20, 1 << 14);
    std::size_t const items = 256;
    ez::session gpu;
    auto program = gpu.build(source);
    auto of_host = program["of_host"], of_device = program["of_device"];
    auto points = gpu.array<std::array<float, 2>>(n);
    auto shared = gpu.array<std::uint32_t>(1), own = gpu.array<std::uint32_t>(items);
    double slow = 0;
    double fast = 0;
    auto const pi = [&](double inside) { return 4 * inside / static_cast<double>(n); };
    here.compare(
        [&] {
            std::mt19937 random(7);
            std::uniform_real_distribution<float> number;
            std::vector<std::array<float, 2>> made(n);
            for (auto& each : made) {
                each = {number(random), number(random)};
            }
            points.write(made);
            shared.fill(0);
            of_host(ez::range(n), points, shared);
            slow = pi(shared.read()[0]);
        },
        [&] {
            of_device(ez::range(items), own, std::uint32_t(n / items / 32), 7U);
            auto const found = own.read();
            fast = pi(std::accumulate(found.begin(), found.end(), 0.0));
        });
    auto four = gpu.array(std::vector<std::uint32_t>{0x243F6A88, 0x85A308D3, 0x13198A2E, 0x03707344});
    program["known"](ez::range(1), four, 0xA4093822, 0x299F31D0);
    here.check(four.read() == std::vector<std::uint32_t>{0xD16CFE09, 0x94FDCCEB, 0x5001E420, 0x24126EA1},
               "the random numbers are not those of Philox");
    double const close = 8 / std::sqrt(static_cast<double>(n)); // five times the standard deviation
    here.check(std::abs(slow - std::acos(-1)) < close, "pi by the host's numbers is wrong");
    here.check(std::abs(fast - std::acos(-1)) < close, "pi by the device's numbers is wrong");
    std::printf("pi is about %.3f, by %zu points\n", fast, n);
}

int main(int count, char** arguments) { return cookbook::run("monte_carlo", monte_carlo, count, arguments); }
