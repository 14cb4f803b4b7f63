// The pull of every body on every other.

#include "support.hpp"

#include <array>
#include <cmath>

namespace ez = vorn::mero::easy;

static char const* const source = R"(
// A work-item for each body; a body is a float4 of position and mass.
kernel void by_body(global float4 const* bodies, global float4* pull, uint count) {
    float4 own = bodies[get_global_id(0)], sum = 0.0f;
    for (uint i = 0; i < count; ++i) {
        float4 to = bodies[i] - own;
        float near = dot(to.xyz, to.xyz) + 0.01f;
        sum.xyz += to.xyz * (bodies[i].w / (near * sqrt(near)));
    }
    pull[get_global_id(0)] = sum;
}

// A work-item for 16 bodies: x, y and z of the 16 in a vector each, so that every instruction works for 16.
kernel void by_sixteen(global float4 const* bodies, global float16 const* x, global float16 const* y,
                       global float16 const* z, global float16* pull, uint count) {
    size_t own = get_global_id(0), all = get_global_size(0);
    float16 own_x = x[own], own_y = y[own], own_z = z[own], sum_x = 0.0f, sum_y = 0.0f, sum_z = 0.0f;
    for (uint i = 0; i < count; ++i) {
        float4 other = bodies[i];
        float16 to_x = other.x - own_x, to_y = other.y - own_y, to_z = other.z - own_z;
        float16 near = to_x * to_x + to_y * to_y + to_z * to_z + 0.01f;
        float16 force = other.w * native_recip(near * native_sqrt(near));
        sum_x += to_x * force;
        sum_y += to_y * force;
        sum_z += to_z * force;
    }
    pull[own] = sum_x;
    pull[own + all] = sum_y;
    pull[own + all * 2] = sum_z;
}
)";

static void nbody(cookbook::recipe const& here) {
    std::size_t const n = here.size(4096, 64);
    std::vector<std::array<float, 4>> bodies(n);
    std::vector<float> x(n);
    std::vector<float> y(n);
    std::vector<float> z(n);
    for (std::size_t i = 0; i != n; ++i) {
        x[i] = static_cast<float>(i * 7919 % 1009) / 1009;
        y[i] = static_cast<float>(i * 6007 % 997) / 997;
        z[i] = static_cast<float>(i * 5003 % 991) / 991;
        bodies[i] = {x[i], y[i], z[i], 1.0F + static_cast<float>(i % 3)};
    }

    ez::session gpu;
    auto program = gpu.build(source);
    auto by_body = program["by_body"];
    auto by_sixteen = program["by_sixteen"];
    auto all = gpu.array(bodies);
    auto xs = gpu.array(x), ys = gpu.array(y), zs = gpu.array(z);
    auto slow = gpu.array<std::array<float, 4>>(n);
    auto fast = gpu.array<float>(n * 3);
    auto const count = static_cast<std::uint32_t>(n);
    here.compare([&] { return by_body(ez::range(n), all, slow, count).time(); },
                 [&] { return by_sixteen(ez::range(n / 16).local(1), all, xs, ys, zs, fast, count).time(); });

    auto const pulls = slow.read();
    auto const axes = fast.read();
    for (std::size_t i = 0; i < n; i += n / 16) { // the host computes the pull along x of a few
        double expected = 0;
        for (auto const& other : bodies) {
            double const to[] = {double{other[0]} - x[i], double{other[1]} - y[i], double{other[2]} - z[i]};
            double const near = to[0] * to[0] + to[1] * to[1] + to[2] * to[2] + 0.01;
            expected += to[0] * other[3] / (near * std::sqrt(near));
        }
        double const close = 1e-4 * static_cast<double>(n);
        here.check(std::abs(pulls[i][0] - expected) < close, "the pull by bodies is wrong");
        here.check(std::abs(axes[i] - expected) < close, "the pull by sixteen bodies is wrong");
    }
    std::printf("%zu x %zu pulls\n", n, n);
}

int main(int count, char** arguments) { return cookbook::run("nbody", nbody, count, arguments); }
