// The Mandelbrot set: how many steps each point takes to escape.

#include "support.hpp"

#include <array>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
#pragma OPENCL FP_CONTRACT OFF // as the host computes

// A work-item for each point.
kernel void by_point(global int* steps, int limit, float scale) {
    float cr = get_global_id(0) * scale - 2.0f, ci = get_global_id(1) * scale - 1.5f, r = 0.0f, i = 0.0f;
    int n = 0;
    for (; n < limit && r * r + i * i < 4.0f; ++n) {
        float t = r * r - i * i + cr;
        i = 2.0f * r * i + ci;
        r = t;
    }
    steps[get_global_id(1) * get_global_size(0) + get_global_id(0)] = n;
}

// A work-item for 16 points: a comparison of vectors gives -1 for each point that is still inside.
kernel void by_sixteen(global int16* steps, int limit, float scale) {
    float16 x = get_global_id(0) * 16 + (float16)(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    float16 cr = x * scale - 2.0f, ci = get_global_id(1) * scale - 1.5f, r = 0.0f, i = 0.0f;
    int16 n = 0, inside = -1;
    for (int step = 0; step < limit && any(inside); ++step) {
        inside = r * r + i * i < 4.0f;
        n -= inside;
        float16 t = r * r - i * i + cr;
        i = 2.0f * r * i + ci;
        r = t;
    }
    steps[get_global_id(1) * get_global_size(0) + get_global_id(0)] = n;
}
)";

static void mandelbrot(cookbook::recipe const& here) {
    std::size_t const n = here.size(1024, 64);
    int const limit = static_cast<int>(here.size(256, 32));
    float const scale = 3.0F / static_cast<float>(n);

    ez::session gpu;
    auto program = gpu.build(source);
    auto by_point = program["by_point"];
    auto by_sixteen = program["by_sixteen"];
    auto slow = gpu.array<int>(n * n), fast = gpu.array<int>(n * n);
    here.compare([&] { return by_point(ez::range(n, n), slow, limit, scale).time(); },
                 [&] { return by_sixteen(ez::range(n / 16, n), fast, limit, scale).time(); });

    auto const points = slow.read();
    here.check(points == fast.read(), "the two ways differ");
    for (std::size_t y = n / 8; y < n; y += n / 4) { // the host computes some lines, and shows them
        for (std::size_t x = 0; x < n; x += n / 64) {
            float const cr = static_cast<float>(x) * scale - 2.0F;
            float const ci = static_cast<float>(y) * scale - 1.5F;
            int steps = 0;
            for (float r = 0, i = 0; steps < limit && r * r + i * i < 4.0F; ++steps) {
                float const t = r * r - i * i + cr;
                i = 2.0F * r * i + ci;
                r = t;
            }
            here.check(points[y * n + x] == steps, "the host counts other steps");
        }
    }
    for (std::size_t y = n / 16; y < n; y += n / 8) {
        for (std::size_t x = 0; x < n; x += n / 64) {
            int const steps = points[y * n + x];
            std::putchar(steps == limit ? '#' : steps > 8 ? '+' : steps > 4 ? '-' : '.');
        }
        std::putchar('\n');
    }
}

int main(int count, char** arguments) { return cookbook::run("mandelbrot", mandelbrot, count, arguments); }
